// Build tool: turns the text pictures of this folder into the symbol files of the konf folder and into a header
// with the same pictures in the form the handheld keeps them in.
//
//   convert_pictures <konf folder> <header to write> <stamp to write> <text picture file>...
//
// The stamp lists what was written, each file with a check sum of its contents. So the next run can tell its own
// files, which it may replace, from those the user has changed or put there, which it leaves alone.

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <utility>
#include <vector>

namespace
{

namespace fs = std::filesystem;
using Bytes = std::vector<unsigned char>;
using Rows = std::vector<std::string>; // top row first, one '#' or '.' a pixel

struct KindInfo {
    std::string_view keyword;                // as written in the text files, after '@'
    std::string_view enumerator;             // in the header; empty: the picture goes into a file only
    std::string_view folder;                 // below konf; empty: no file is written
    std::array<std::string_view, 2> markers; // of half 0 and half 1 in the file name
    std::size_t halves;
    std::size_t width;
    std::size_t height;
    int lastNumber;
};

constexpr std::array<KindInfo, 5> Kinds{{
    {"loco", "Loco", "LokSymbole", {"", ""}, 1, 48, 16, 63},
    {"function", "Function", "LokfktSymbole", {" %ON%", " %OFF%"}, 2, 14, 14, 255},
    {"accessory", "Accessory", "MagSymbole", {" %GRN%", " %ROT%"}, 2, 14, 14, 255},
    {"startimage", "StartImage", "", {"", ""}, 1, 80, 26, 0},
    {"checkmark", "", ".", {"", ""}, 1, 14, 14, 0},
}};

constexpr std::size_t LargestPicture = 262; // the start image: size header and 26 rows of 10 bytes
constexpr std::size_t BmpDataOffset = 62;   // file header, info header, two palette entries
constexpr std::size_t BmpRowAlignment = 4;

struct Picture {
    const KindInfo *kind;
    int number;
    std::string description; // UTF-8
    std::array<Rows, 2> halves;
};

// ---- Reading the text pictures -------------------------------------------------------------------------------

class Reader
{
public:
    explicit Reader(std::vector<Picture> &pictures) : m_pictures(pictures) { }

    void read(const fs::path &file);

private:
    [[noreturn]] void fail(std::size_t line, const std::string &message) const;
    void takeLine(const std::string &text);
    void takeKind(std::string_view keyword);
    void takeHeading(const std::string &text);
    void takeRow(const std::string &text);
    void checkDescription(const std::string &text) const;
    void finishPicture();
    [[nodiscard]] bool pictureOpen() const { return m_headingLine != 0; }

    std::vector<Picture> &m_pictures;
    std::set<std::pair<const KindInfo *, int>> m_known;
    std::string m_file;
    std::size_t m_line = 0;
    std::size_t m_headingLine = 0; // of the picture whose rows are being read, 0 when there is none
    const KindInfo *m_kind = nullptr;
};

void Reader::fail(std::size_t line, const std::string &message) const
{
    throw std::runtime_error(m_file + ":" + std::to_string(line) + ": error: " + message);
}

void Reader::read(const fs::path &file)
{
    m_file = file.string();
    m_line = 0;
    m_kind = nullptr;
    std::ifstream in(file, std::ios::binary);
    if (!in)
        fail(0, "cannot be opened");
    for (std::string text; std::getline(in, text);) {
        ++m_line;
        if (!text.empty() && text.back() == '\r')
            text.pop_back();
        takeLine(text);
    }
    finishPicture();
    if (!m_kind)
        fail(m_line, "no '@' line says what kind of pictures these are");
}

void Reader::takeLine(const std::string &text)
{
    if (text.empty()) {
        finishPicture();
    } else if (text.front() == ';') {
        return;
    } else if (text.front() == '@') {
        finishPicture();
        takeKind(std::string_view(text).substr(1));
    } else if (text.front() >= '0' && text.front() <= '9') {
        finishPicture();
        takeHeading(text);
    } else {
        takeRow(text);
    }
}

void Reader::takeKind(std::string_view keyword)
{
    const auto found = std::ranges::find(Kinds, keyword, &KindInfo::keyword);
    if (found == Kinds.end())
        fail(m_line, "unknown kind of picture '" + std::string(keyword) + "'");
    m_kind = &*found;
}

void Reader::takeHeading(const std::string &text)
{
    if (!m_kind)
        fail(m_line, "the '@' line with the kind must come before the first picture");
    int number = 0;
    const char *end = text.data() + text.size();
    const auto [rest, problem] = std::from_chars(text.data(), end, number);
    if (problem != std::errc() || rest == end || *rest != ' ')
        fail(m_line, "a heading is a number, one blank and a description");
    if (number > m_kind->lastNumber)
        fail(m_line, "number " + std::to_string(number) + " is above " + std::to_string(m_kind->lastNumber));
    if (!m_known.emplace(m_kind, number).second)
        fail(m_line, "number " + std::to_string(number) + " is already taken");
    Picture picture{m_kind, number, std::string(rest + 1, end), {}};
    checkDescription(picture.description);
    m_pictures.push_back(std::move(picture));
    m_headingLine = m_line;
}

// The description becomes part of a file name, here and on systems that allow less, and is shown in Latin-1.
void Reader::checkDescription(const std::string &text) const
{
    if (text.empty() || text.front() == ' ' || text.back() == ' ' || text.back() == '.')
        fail(m_line, "a description must not be empty, nor begin or end with a blank, nor end with a dot");
    if (const auto at = text.find_first_of("/\\:*?\"<>|%"); at != std::string::npos)
        fail(m_line, std::string("a description must not hold '") + text.at(at) + "'");
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text.at(i));
        if (byte >= 0x20 && byte < 0x7F)
            continue;
        // U+00A0 .. U+00FF, the printable upper half of Latin-1, are C2 A0 .. C2 BF and C3 80 .. C3 BF.
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text.at(i + 1)) : 0U;
        const bool latin1 =
            (byte == 0xC2 && next >= 0xA0 && next <= 0xBF) || (byte == 0xC3 && next >= 0x80 && next <= 0xBF);
        if (!latin1)
            fail(m_line, "a description may hold Latin-1 characters only, written in UTF-8");
        ++i;
    }
}

void Reader::takeRow(const std::string &text)
{
    if (!pictureOpen())
        fail(m_line, "pixels without a heading before them");
    Picture &picture = m_pictures.back();
    const std::size_t width = m_kind->width;
    if (picture.halves.front().size() == m_kind->height)
        fail(m_line, "more than " + std::to_string(m_kind->height) + " rows");
    if (const auto at = text.find_first_not_of("#. "); at != std::string::npos)
        fail(m_line, std::string("'") + text.at(at) + "' is neither '#' nor '.'");
    constexpr std::string_view Gap = "  ";
    const std::size_t expected = m_kind->halves * width + (m_kind->halves - 1) * Gap.size();
    if (text.size() != expected)
        fail(m_line, "a row has " + std::to_string(expected) + " characters, not " + std::to_string(text.size()));
    for (std::size_t half = 0; half < m_kind->halves; ++half) {
        std::string row = text.substr(half * (width + Gap.size()), width);
        if (row.find(' ') != std::string::npos || (half == 1 && text.substr(width, Gap.size()) != Gap))
            fail(m_line, "a blank inside a half, or the gap of two blanks is not between the halves");
        picture.halves.at(half).push_back(std::move(row));
    }
}

void Reader::finishPicture()
{
    if (!pictureOpen())
        return;
    const std::size_t rows = m_pictures.back().halves.front().size();
    if (rows != m_kind->height)
        fail(m_headingLine, "only " + std::to_string(rows) + " of " + std::to_string(m_kind->height) + " rows");
    m_headingLine = 0;
}

// ---- Pictures as bytes ---------------------------------------------------------------------------------------

// A row of pixels, 1 = dark, leftmost pixel in the most significant bit; the unused bits of the last byte are 0.
Bytes packRow(const std::string &row)
{
    Bytes packed((row.size() + 7) / 8, 0);
    for (std::size_t x = 0; x < row.size(); ++x)
        if (row.at(x) == '#')
            packed.at(x / 8) = static_cast<unsigned char>(packed.at(x / 8) | (0x80U >> (x % 8)));
    return packed;
}

// Both the flash and the file begin with the bottom row.
Rows bottomFirst(const Rows &rows)
{
    return Rows(rows.rbegin(), rows.rend());
}

// As the handheld's flash holds it: width / 2 - 1, height - 1, then the rows, bottom row first.
Bytes flashPicture(const KindInfo &kind, const Rows &rows)
{
    Bytes bytes{static_cast<unsigned char>(kind.width / 2 - 1), static_cast<unsigned char>(kind.height - 1)};
    for (const std::string &row : bottomFirst(rows))
        std::ranges::copy(packRow(row), std::back_inserter(bytes));
    return bytes;
}

void putNumber(Bytes &bytes, std::size_t value, int width)
{
    for (int i = 0; i < width; ++i)
        bytes.push_back(static_cast<unsigned char>(value >> (8 * i) & 0xFFU));
}

Bytes bmpHeader(const KindInfo &kind, std::size_t imageSize)
{
    constexpr std::size_t InfoHeaderSize = 40;
    Bytes bytes{'B', 'M'};
    putNumber(bytes, BmpDataOffset + imageSize, 4);
    putNumber(bytes, 0, 4);
    putNumber(bytes, BmpDataOffset, 4);
    putNumber(bytes, InfoHeaderSize, 4);
    putNumber(bytes, kind.width, 4);
    putNumber(bytes, kind.height, 4); // positive: the bottom row comes first
    putNumber(bytes, 1, 2);           // planes
    putNumber(bytes, 1, 2);           // bits a pixel
    putNumber(bytes, 0, 4);           // not compressed
    putNumber(bytes, imageSize, 4);
    putNumber(bytes, 0, 8); // no resolution given
    putNumber(bytes, 2, 4); // colours
    putNumber(bytes, 0, 4);
    putNumber(bytes, 0x000000, 4); // entry 0: black
    putNumber(bytes, 0xFFFFFF, 4); // entry 1: white
    return bytes;
}

// The padding repeats the last byte of its row, as the program itself does when it saves a symbol: a symbol that
// is loaded and saved again gives the same file.
Bytes bmpFile(const KindInfo &kind, const Rows &rows)
{
    const std::size_t rowBytes = (kind.width + 7) / 8;
    const std::size_t stride = (rowBytes + BmpRowAlignment - 1) / BmpRowAlignment * BmpRowAlignment;
    Bytes bytes = bmpHeader(kind, stride * kind.height);
    for (const std::string &row : bottomFirst(rows)) {
        for (const unsigned char dark : packRow(row))
            bytes.push_back(static_cast<unsigned char>(~dark)); // dark is palette entry 0
        bytes.insert(bytes.end(), stride - rowBytes, bytes.back());
    }
    return bytes;
}

Rows blankRows(const KindInfo &kind)
{
    return Rows(kind.height, std::string(kind.width, '.'));
}

// ---- Files ---------------------------------------------------------------------------------------------------

fs::path pathOf(const std::string &utf8)
{
    return fs::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string utf8Of(const fs::path &path)
{
    const std::u8string text = path.generic_u8string();
    return std::string(text.begin(), text.end());
}

void writeFile(const fs::path &file, std::span<const unsigned char> bytes)
{
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    for (const unsigned char byte : bytes)
        out.put(static_cast<char>(byte));
    out.close();
    if (!out)
        throw std::runtime_error(file.string() + ": error: cannot be written");
}

void writeText(const fs::path &file, const std::string &text)
{
    writeFile(file, Bytes(text.begin(), text.end()));
}

Bytes readFile(const fs::path &file)
{
    std::ifstream in(file, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// FNV-1a; it only has to notice that somebody changed a picture.
std::uint64_t checkSum(const Bytes &bytes)
{
    std::uint64_t sum = 0xCBF29CE484222325U;
    for (const unsigned char byte : bytes)
        sum = (sum ^ byte) * 0x100000001B3U;
    return sum;
}

// The konf folder: puts files there without touching those that belong to the user.
class KonfFolder
{
public:
    KonfFolder(fs::path folder, const fs::path &stamp);

    void addSymbol(const Picture &picture, std::size_t half);
    void addCheckMark(const Picture &picture);
    void addTemplate(const std::string &name, const KindInfo &kind);
    [[nodiscard]] const std::string &stampText() const { return m_written; }

private:
    void listUserFiles(const KindInfo &kind);
    void write(const fs::path &relative, const Bytes &bytes);

    fs::path m_folder;
    std::string m_written;                                             // the text of the new stamp
    std::set<std::tuple<const KindInfo *, int, std::string>> m_ofUser; // kind, number, marker
};

std::string upperAscii(std::string text)
{
    std::ranges::transform(
        text, text.begin(), [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return text;
}

// Takes away what the last run wrote, unless it was changed since; whatever is left is the user's.
KonfFolder::KonfFolder(fs::path folder, const fs::path &stamp) : m_folder(std::move(folder))
{
    std::ifstream in(stamp, std::ios::binary);
    std::uint64_t sum = 0;
    std::string name;
    while (in >> sum && std::getline(in >> std::ws, name)) {
        const fs::path file = m_folder / pathOf(name);
        if (fs::is_regular_file(file) && checkSum(readFile(file)) == sum)
            fs::remove(file);
    }
    fs::create_directories(m_folder);
    for (const KindInfo &kind : Kinds)
        if (!kind.folder.empty() && kind.folder != ".")
            listUserFiles(kind);
}

void KonfFolder::listUserFiles(const KindInfo &kind)
{
    const fs::path folder = m_folder / kind.folder;
    fs::create_directories(folder);
    for (const auto &entry : fs::directory_iterator(folder)) {
        const std::string name = upperAscii(utf8Of(entry.path().filename()));
        int number = 0;
        if (std::from_chars(name.data(), name.data() + name.size(), number).ec != std::errc())
            continue;
        for (std::size_t half = 0; half < kind.halves; ++half)
            if (name.find(kind.markers.at(half)) != std::string::npos)
                m_ofUser.emplace(&kind, number, kind.markers.at(half));
    }
}

void KonfFolder::write(const fs::path &relative, const Bytes &bytes)
{
    writeFile(m_folder / relative, bytes);
    m_written += std::to_string(checkSum(bytes)) + " " + utf8Of(relative) + "\n";
}

void KonfFolder::addSymbol(const Picture &picture, std::size_t half)
{
    const KindInfo &kind = *picture.kind;
    const std::string marker(kind.markers.at(half));
    if (m_ofUser.contains({&kind, picture.number, marker}))
        return;
    const std::string name = std::to_string(picture.number) + " " + picture.description + marker + ".bmp";
    write(fs::path(kind.folder) / pathOf(name), bmpFile(kind, picture.halves.at(half)));
}

void KonfFolder::addCheckMark(const Picture &picture)
{
    const fs::path name = pathOf(picture.description + ".bmp");
    if (!fs::exists(m_folder / name))
        write(name, bmpFile(*picture.kind, picture.halves.front()));
    else // the build takes this file's age for that of the whole folder
        fs::last_write_time(m_folder / name, fs::file_time_type::clock::now());
}

// The program paints into these two while it runs, so they are only made when they are missing.
void KonfFolder::addTemplate(const std::string &name, const KindInfo &kind)
{
    if (!fs::exists(m_folder / name))
        writeFile(m_folder / name, bmpFile(kind, blankRows(kind)));
}

// ---- The header ----------------------------------------------------------------------------------------------

std::string headerEntry(const Picture &picture, std::size_t half)
{
    const Bytes bytes = flashPicture(*picture.kind, picture.halves.at(half));
    std::ostringstream out;
    out << "    { Kind::" << picture.kind->enumerator << ", " << picture.number << ", " << half << ", "
        << bytes.size() << ", { ";
    for (std::size_t i = 0; i < bytes.size(); ++i)
        out << (i == 0 ? "" : ", ") << static_cast<unsigned>(bytes.at(i));
    out << " } },\n";
    return out.str();
}

std::string headerText(const std::vector<Picture> &pictures)
{
    std::size_t count = 0;
    std::string entries;
    for (const Picture &picture : pictures) {
        for (std::size_t half = 0; !picture.kind->enumerator.empty() && half < picture.kind->halves; ++half) {
            entries += headerEntry(picture, half);
            ++count;
        }
    }
    std::ostringstream out;
    out << "// Made by convert_pictures from the text pictures in konf/pictures; do not edit.\n"
           "#pragma once\n\n#include <array>\n\nnamespace demo_pictures {\n\n"
           "enum class Kind { Loco, Function, Accessory, StartImage };\n\n"
           "// One picture as the handheld's flash holds it: byte 0 = width / 2 - 1, byte 1 = height - 1, then the\n"
           "// pixel rows, bottom row first, 1 = dark, most significant bit leftmost.\n"
           "struct Picture {\n"
           "    Kind kind;\n"
           "    int number; // symbol number, 0 for the start image\n"
           "    int half; // 0 = ON or green, 1 = OFF or red; 0 for loco symbols and the start image\n"
           "    int size; // bytes used: 98, 30, 30 or 262\n"
           "    std::array<unsigned char, "
        << LargestPicture << "> bytes; // 0 from size on\n};\n\ninline constexpr std::array<Picture, " << count
        << "> Pictures { {\n"
        << entries << "} };\n\n} // namespace demo_pictures\n";
    return out.str();
}

// ---- All of it -----------------------------------------------------------------------------------------------

std::vector<Picture> readAll(std::span<char *const> files)
{
    std::vector<Picture> pictures;
    Reader reader(pictures);
    for (const char *file : files)
        reader.read(file);
    for (const KindInfo &kind : Kinds)
        if (std::ranges::find(pictures, &kind, &Picture::kind) == pictures.end())
            throw std::runtime_error("error: no picture of the kind '" + std::string(kind.keyword) + "'");
    std::ranges::stable_sort(
        pictures, {}, [](const Picture &picture) { return std::pair(picture.kind, picture.number); });
    return pictures;
}

void fillKonf(KonfFolder &konf, const std::vector<Picture> &pictures)
{
    for (const Picture &picture : pictures) {
        if (picture.kind->folder == ".")
            konf.addCheckMark(picture);
        else if (!picture.kind->folder.empty())
            for (std::size_t half = 0; half < picture.kind->halves; ++half)
                konf.addSymbol(picture, half);
    }
    konf.addTemplate("temp_loksym.bmp", *std::ranges::find(Kinds, "loco", &KindInfo::keyword));
    konf.addTemplate("temp_lokfkt.bmp", *std::ranges::find(Kinds, "function", &KindInfo::keyword));
}

} // namespace

int main(int argc, char **argv)
{
    const std::span<char *const> arguments(argv, static_cast<std::size_t>(argc));
    if (arguments.size() < 5) {
        std::cerr << "convert_pictures <konf folder> <header> <stamp> <text picture file>...\n";
        return 2;
    }
    try {
        const std::vector<Picture> pictures = readAll(arguments.subspan(4)); // nothing is written when this fails
        KonfFolder konf(arguments[1], arguments[3]);
        fillKonf(konf, pictures);
        writeText(arguments[2], headerText(pictures));
        writeText(arguments[3], konf.stampText());
    } catch (const std::exception &problem) {
        std::cerr << problem.what() << '\n';
        return 1;
    }
    return 0;
}
