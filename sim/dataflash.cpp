#include "sim/dataflash.h"

#include <algorithm>

namespace hr::sim
{
namespace
{

constexpr quint8 ContinuousRead = 0xE8;
constexpr quint8 PageToBuffer1 = 0x53;
constexpr quint8 Buffer1Write = 0x84;
constexpr quint8 Buffer1ToPage = 0x83;
constexpr quint8 ComparePage = 0x60;
constexpr quint8 Status = 0xD7;
constexpr quint8 StatusReady = 0x80;
constexpr quint8 StatusDiffers = 0x40;
constexpr quint8 StatusSize = 0x34;
constexpr std::size_t CommandSize = 4;
constexpr std::size_t ReadHeaderSize = 8;
constexpr quint8 Erased = 0xFF;
constexpr quint8 FloatingOutput = 0xFF;
constexpr qint64 TransferUs = 250;
constexpr qint64 EraseAndProgramUs = 20'000;

// The chip has 22 address lines; the two highest bits of the 24 sent are not decoded.
int AddressOf(std::span<const quint8> bytes)
{
    return ((bytes[1] << 16) | (bytes[2] << 8) | bytes[3]) % FlashSize;
}

std::ptrdiff_t PageStart(int page)
{
    return std::ptrdiff_t{page} * PageSize;
}

int BufferOffset(std::span<const quint8> bytes)
{
    return ((bytes[2] & 1) << 8) | bytes[3];
}

} // namespace

void Dataflash::clock(std::span<quint8> bytes, qint64 nowUs)
{
    if (bytes.empty())
        return;
    const quint8 opcode = bytes[0];
    if (opcode == Status) {
        ++state.executed.at(opcode);
        readStatus(bytes, nowUs);
    } else if (nowUs >= state.busyUntilUs && bytes.size() >= CommandSize && run(bytes, nowUs)) {
        ++state.executed.at(opcode);
    } else {
        ++state.ignored;
        std::ranges::fill(bytes, FloatingOutput);
    }
}

// False for a command that the chip does not know.
bool Dataflash::run(std::span<quint8> bytes, qint64 nowUs)
{
    const int address = AddressOf(bytes);
    switch (bytes[0]) {
    case ContinuousRead:
        read(bytes, address);
        return true;
    case PageToBuffer1:
        loadBuffer(address / PageSize, nowUs);
        break;
    case Buffer1Write:
        writeBuffer(bytes.subspan(CommandSize), BufferOffset(bytes));
        break;
    case Buffer1ToPage:
        program(address / PageSize, nowUs);
        break;
    case ComparePage:
        compare(address / PageSize, nowUs);
        break;
    default:
        return false;
    }
    std::ranges::fill(bytes, FloatingOutput);
    return true;
}

void Dataflash::read(std::span<quint8> bytes, int address) const
{
    const std::size_t header = std::min(ReadHeaderSize, bytes.size());
    std::ranges::fill(bytes.first(header), FloatingOutput);
    for (quint8 &byte : bytes.subspan(header)) {
        byte = state.memory.at(static_cast<std::size_t>(address));
        address = (address + 1) % FlashSize;
    }
}

void Dataflash::loadBuffer(int page, qint64 nowUs)
{
    std::copy_n(state.memory.begin() + PageStart(page), PageSize, state.buffer1.begin());
    state.busyUntilUs = nowUs + TransferUs;
    state.programmingPage = -1;
}

void Dataflash::writeBuffer(std::span<const quint8> data, int offset)
{
    for (const quint8 byte : data) {
        state.buffer1.at(static_cast<std::size_t>(offset)) = byte;
        offset = (offset + 1) % PageSize;
    }
}

void Dataflash::program(int page, qint64 nowUs)
{
    std::ranges::copy(state.buffer1, state.memory.begin() + PageStart(page));
    ++state.wear.at(static_cast<std::size_t>(page));
    state.programmingPage = page;
    state.busyUntilUs = nowUs + EraseAndProgramUs;
    savePage(page);
}

void Dataflash::compare(int page, qint64 nowUs)
{
    const auto stored = state.memory.begin() + PageStart(page);
    state.differs = !std::equal(state.buffer1.begin(), state.buffer1.end(), stored);
    state.busyUntilUs = nowUs + TransferUs;
    state.programmingPage = -1;
}

void Dataflash::readStatus(std::span<quint8> bytes, qint64 nowUs) const
{
    const int ready = nowUs >= state.busyUntilUs ? StatusReady : 0;
    const int differs = state.differs ? StatusDiffers : 0;
    bytes[0] = FloatingOutput; // while the opcode goes in
    std::ranges::fill(bytes.subspan(1), static_cast<quint8>(ready | differs | StatusSize));
}

void Dataflash::cutPower(qint64 nowUs)
{
    if (state.programmingPage >= 0 && nowUs < state.busyUntilUs) {
        const auto page = state.memory.begin() + PageStart(state.programmingPage);
        std::fill(page + PageSize / 2, page + PageSize, Erased);
        savePage(state.programmingPage);
    }
    state.programmingPage = -1;
    state.busyUntilUs = nowUs;
    state.buffer1.fill(0);
}

bool Dataflash::keepIn(const QString &path)
{
    file.close();
    file.setFileName(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        return false;
    if (file.size() == FlashSize) {
        setBytes(0, file.readAll());
        return true;
    }
    const bool written = file.resize(0) && file.write(bytes(0, FlashSize)) == FlashSize;
    if (!written)
        file.close();
    return written;
}

void Dataflash::savePage(int page)
{
    if (file.isOpen() && file.seek(PageStart(page)))
        file.write(bytes(page * PageSize, PageSize));
}

QByteArray Dataflash::bytes(int address, int count) const
{
    Q_ASSERT(address >= 0 && count >= 0 && address + count <= FlashSize);
    return {reinterpret_cast<const char *>(state.memory.data()) + address, count};
}

void Dataflash::setBytes(int address, const QByteArray &content)
{
    Q_ASSERT(address >= 0 && address + content.size() <= FlashSize);
    std::ranges::copy(content, state.memory.begin() + address);
}

} // namespace hr::sim
