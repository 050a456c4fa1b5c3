# What Linux wants beside the program folder: man pages, completion, desktop files; and the Debian package, whose files are
# the install component "debian" (scripts/package deb makes it).

set(linux_in ${CMAKE_CURRENT_LIST_DIR}/linux)
set(linux_out ${CMAKE_BINARY_DIR}/linux)

# The newest entry of the list of changes is this version; its day stands in man pages and metadata.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md newest_change REGEX "^## " LIMIT_COUNT 1 ENCODING UTF-8)
string(REGEX MATCH "^## ([0-9.]+) – ([0-9-]+)$" matched "${newest_change}")
set(HR_RELEASE_DATE "${CMAKE_MATCH_2}")
if(NOT "${CMAKE_MATCH_1}" STREQUAL PROJECT_VERSION)
  message(FATAL_ERROR "CHANGELOG.md begins with \"${newest_change}\", but this is version ${PROJECT_VERSION}")
endif()

# --- Files made of templates ---

function(hr_window_program_files program title)
  set(HR_PROGRAM ${program})
  string(TOUPPER ${program} HR_PROGRAM_UPPER)
  set(HR_TITLE "${title}")
  set(HR_COMPONENT org.handregler_tool.${program})
  configure_file(${linux_in}/program.desktop.in ${linux_out}/${program}.desktop @ONLY)
  configure_file(${linux_in}/program.metainfo.xml.in ${linux_out}/${HR_COMPONENT}.metainfo.xml @ONLY)
  configure_file(${PROJECT_SOURCE_DIR}/docs/fenster.1.in ${linux_out}/man/${program}.1 @ONLY)
endfunction()
hr_window_program_files(veska "VESKA II TOOL")
hr_window_program_files(arvelo "Arvelo TOOL")
configure_file(${PROJECT_SOURCE_DIR}/docs/handregler.1.in ${linux_out}/man/handregler.1 @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/docs/handregler-sim.1.in ${linux_out}/man/handregler-sim.1 @ONLY)

# Debian's form of the licence: blank lines are dots, and each line is indented.
file(READ ${PROJECT_SOURCE_DIR}/LICENSE licence)
string(REGEX REPLACE "^MIT License\n\nCopyright[^\n]*\n\n" "" licence "${licence}")
string(REGEX REPLACE "\n$" "" licence "${licence}")
string(REPLACE "\n\n" "\n.\n" licence "${licence}")
string(REPLACE "\n" "\n " licence "${licence}")
set(HR_LICENSE " ${licence}")
configure_file(${linux_in}/copyright.in ${linux_out}/copyright @ONLY)

# --- The program folder ---

install(FILES ${linux_out}/man/handregler.1 DESTINATION share/man/man1)
install(FILES docs/handregler.bash-completion DESTINATION share/bash-completion/completions RENAME handregler)

# --- The Debian package ---

set(HR_MAINTAINER "Die Autoren des Handregler-Tools <handregler-tool@example.org>")
set(linux_programs veska arvelo handregler handregler-sim)
set(packed)
function(hr_pack source output)
  add_custom_command(OUTPUT ${output} COMMAND gzip -9nc ${source} > ${output} DEPENDS ${source} VERBATIM)
  set(packed ${packed} ${output} PARENT_SCOPE)
endfunction()
foreach(program ${linux_programs})
  hr_pack(${linux_out}/man/${program}.1 ${linux_out}/man/${program}.1.gz)
endforeach()
add_custom_command(OUTPUT ${linux_out}/changelog
  COMMAND ${linux_in}/debian-changelog ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${HR_MAINTAINER} > ${linux_out}/changelog
  DEPENDS ${linux_in}/debian-changelog ${PROJECT_SOURCE_DIR}/CHANGELOG.md VERBATIM)
hr_pack(${linux_out}/changelog ${linux_out}/changelog.gz)
add_custom_target(debian_files DEPENDS ${packed})

function(hr_install_debian)
  install(${ARGN} COMPONENT debian EXCLUDE_FROM_ALL)
endfunction()

# Programs lie in a folder of their own with links to what they look for beside themselves.
set(lib lib/handregler-tool)
set(data share/handregler-tool)
set(doc share/doc/handregler-tool)
hr_install_debian(TARGETS ${linux_programs} RUNTIME DESTINATION ${lib})
hr_install_debian(FILES ${linux_in}/installiert.txt DESTINATION ${lib})
hr_install_debian(DIRECTORY ${CMAKE_BINARY_DIR}/bin/konf ${CMAKE_BINARY_DIR}/bin/handbuch DESTINATION ${data})
function(hr_install_link target folder name)
  file(MAKE_DIRECTORY ${linux_out}/links/${folder})
  file(CREATE_LINK ${target} ${linux_out}/links/${folder}/${name} SYMBOLIC)
  hr_install_debian(FILES ${linux_out}/links/${folder}/${name} DESTINATION ${folder})
endfunction()
foreach(program ${linux_programs})
  hr_install_link(../${lib}/${program} bin ${program})
endforeach()
foreach(folder konf handbuch)
  hr_install_link(../../${data}/${folder} ${lib} ${folder})
endforeach()
hr_install_link(../../handregler-tool/handbuch ${doc} handbuch)

hr_install_debian(FILES ${linux_out}/copyright ${linux_out}/changelog.gz DESTINATION ${doc})
hr_install_debian(FILES docs/handregler.bash-completion DESTINATION share/bash-completion/completions RENAME handregler)
foreach(program ${linux_programs})
  hr_install_debian(FILES ${linux_out}/man/${program}.1.gz DESTINATION share/man/man1)
endforeach()
foreach(program veska arvelo)
  hr_install_debian(FILES ${linux_out}/${program}.desktop DESTINATION share/applications)
  hr_install_debian(FILES ${linux_out}/org.handregler_tool.${program}.metainfo.xml DESTINATION share/metainfo)
endforeach()
set(icons ${PROJECT_SOURCE_DIR}/app/icons)
set(icon_folder share/icons/hicolor)
foreach(size 16 24 32 48 64 128 256)
  hr_install_debian(FILES ${icons}/handregler-${size}.png DESTINATION ${icon_folder}/${size}x${size}/apps
    RENAME handregler-tool.png)
endforeach()
hr_install_debian(FILES ${icons}/handregler.svg DESTINATION ${icon_folder}/scalable/apps RENAME handregler-tool.svg)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME handregler-tool)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_CMAKE_PROJECTS "${CMAKE_BINARY_DIR};${PROJECT_NAME};debian;/")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${HR_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Daten eines Funk-Handreglers am LocoNet ändern und sichern")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
  "Liest, ändert, schreibt und sichert, was ein Funk-Handregler gespeichert hat:
Loks mit Namen, Symbolen und Funktionen, eigene Symbole, das Startbild,
Fahrstraßen, Magnetartikel und Einstellungen. Zwei Fensterprogramme (veska und
arvelo), das Terminalprogramm handregler und ein simulierter Handregler zum
Ausprobieren.")
include(CPack)
