# Initial cache of the small static qtbase for Windows. Any change here makes scripts/windows/qt build it anew.
foreach(off
    # whole modules
    dbus sql xml testlib concurrent
    # graphics that the program does not use
    # (direct2d stays on: Qt 6.4 compiles its DirectWrite font engine only together with it)
    vulkan direct2d1_1 freetype
    # wintab.h is removed from Debian's source package
    tabletevent
    # the network is one plain connection
    ssl schannel openssl http udpsocket networkproxy socks5 networkdiskcache networklistmanager dnslookup localserver gssapi sspi
    # outer libraries, image formats, text formats
    icu zstd glib gif jpeg ico textmarkdownreader textmarkdownwriter textodfwriter
    # widgets that the program does not use
    # (calendarwidget stays on: without it the print dialog is gone)
    graphicsview graphicseffect mdiarea wizard lcdnumber dial columnview splashscreen systemtrayicon
    undoview printpreviewwidget printpreviewdialog fontcombobox keysequenceedit
    imageformat_ppm imageformat_xbm)
  set(FEATURE_${off} OFF CACHE BOOL "")
endforeach()
foreach(on optimize_size static_runtime printdialog)
  set(FEATURE_${on} ON CACHE BOOL "")
endforeach()
foreach(bundled pcre2 zlib libpng png harfbuzz doubleconversion)
  set(FEATURE_system_${bundled} OFF CACHE BOOL "")
endforeach()
set(INPUT_opengl no CACHE STRING "")
set(BUILD_SHARED_LIBS OFF CACHE BOOL "")
set(QT_BUILD_EXAMPLES OFF CACHE BOOL "")
set(QT_BUILD_TESTS OFF CACHE BOOL "")
set(QT_BUILD_TOOLS_WHEN_CROSSCOMPILING OFF CACHE BOOL "")
