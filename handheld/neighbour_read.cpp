#include "handheld/neighbour_read.h"

#include <algorithm>
#include <utility>

namespace hr::handheld
{

namespace
{

int BytesOf(const RecordId &id)
{
    return id.kind == RecordKind::Loco ? LocoRecordSize : RowOf(id.kind).flashBytes;
}

int EndOf(const RecordId &id)
{
    return FirstByteOf(id) + BytesOf(id);
}

/// How many of the records lie in one row, without a gap of more than a symbol half leaves.
size_t LengthOfRow(std::span<const RecordId> ids)
{
    constexpr int widestGap = SymbolHalfDistance - FlashBytesOf(HalfSymbolGeometry);
    size_t length = 1;
    while (length < ids.size() && NeighbourReader::canRead(ids[length].kind)) {
        const int gap = FirstByteOf(ids[length]) - EndOf(ids[length - 1]);
        if (gap < 0 || gap > widestGap)
            break;
        ++length;
    }
    return length;
}

/// A piece of the flash, fetched slice by slice as far as it is wanted. Addresses before the flash read are those of the
/// bytes that are known already.
class Piece
{
public:
    Piece(int firstAddress, const std::vector<quint8> &known, const Patience &manner)
        : base(firstAddress + static_cast<int>(known.size())), patience(manner)
    {
        image.fill(EmptyByte);
        front = known;
        asked.resize(Slices);
    }

    Outcome request(int count) { return failed = read_flash_to_spibuf(base, count, patience); }

    /// The first failure among the slices that hold these bytes.
    Outcome fetch(int address, int count)
    {
        Outcome outcome = failed;
        if (EndsStep(failed, patience))
            return outcome;
        const int first = std::max(address, base) - base;
        for (int slice = first / SliceSize; slice * SliceSize < address + count - base; ++slice)
            outcome.keep(fetchSlice(static_cast<size_t>(slice)));
        return outcome;
    }

    [[nodiscard]] quint8 at(int address) const
    {
        if (address < base)
            return front.at(front.size() - static_cast<size_t>(base - address));
        return image.at(static_cast<size_t>(ReadPosition + address - base));
    }

    [[nodiscard]] std::vector<quint8> bytes(int address, int count) const
    {
        std::vector<quint8> result;
        result.reserve(static_cast<size_t>(count));
        for (int i = 0; i < count; ++i)
            result.push_back(at(address + i));
        return result;
    }

    /// Up to which address all that was fetched is sure, from this one on.
    [[nodiscard]] int sureEnd(int address, int limit) const
    {
        while (address < limit && isSure(address))
            ++address;
        return address;
    }

private:
    static constexpr size_t Slices = (LongestRead + SliceSize - 1) / SliceSize;

    [[nodiscard]] bool isSure(int address) const
    {
        if (address < base)
            return true;
        const auto &slice = asked.at(static_cast<size_t>((address - base) / SliceSize));
        return failed.ok() && slice && slice->ok();
    }

    Outcome fetchSlice(size_t slice)
    {
        const int start = std::min(ReadPosition + static_cast<int>(slice) * SliceSize, MaxSliceStart);
        if (!asked.at(slice))
            asked.at(slice) = read_spibuf(image, start, patience);
        return *asked.at(slice);
    }

    const int base;
    const Patience patience;
    SpiImage image{};
    std::vector<quint8> front;
    Outcome failed;
    std::vector<std::optional<Outcome>> asked; // by slice
};

RecordRead ReadLocoFrom(Piece &piece, const RecordId &id)
{
    const int address = FirstByteOf(id);
    RecordRead read;
    read.bytes.fill(EmptyByte);
    read.outcome = piece.fetch(address, 1);
    if (!read.outcome.ok() || piece.at(address) != EmptyByte) {
        read.outcome.keep(piece.fetch(address, LocoRecordSize));
        std::ranges::copy(piece.bytes(address, LocoRecordSize), read.bytes.begin());
    }
    read.value = DecodeLoco(read.bytes);
    return read;
}

RecordRead ReadPictureFrom(Piece &piece, const RecordId &id)
{
    const SymbolKind symbol = SymbolKindOf(id.kind);
    RecordRead read;
    read.outcome = piece.fetch(FirstByteOf(id), BytesOf(id));
    read.value = Picture{GeometryOf(symbol), piece.bytes(FirstByteOf(id), BackupBytesOf(symbol))};
    return read;
}

} // namespace

bool NeighbourReader::canRead(RecordKind kind)
{
    return kind == RecordKind::Loco || RowOf(kind).symbol.has_value();
}

std::vector<RecordRead> NeighbourReader::read(std::span<const RecordId> ids, const Patience &patience)
{
    const auto row = ids.first(LengthOfRow(ids));
    const int first = FirstByteOf(row.front());
    const std::vector<quint8> known =
        std::exchange(keptAddress, -1) == first ? std::exchange(kept, {}) : std::vector<quint8>();
    std::vector<RecordRead> all;
    if (row.front().kind == RecordKind::Loco && !known.empty() && known.front() == EmptyByte) {
        RecordRead &empty = all.emplace_back();
        empty.bytes.fill(EmptyByte);
        empty.value = DecodeLoco(empty.bytes);
        return all;
    }
    const int base = first + static_cast<int>(known.size());
    const int end = std::min(base + LongestRead, EndOf(row.back()));
    static_cast<void>(RunStep(patience, [&](const Patience &manner) {
        all.clear();
        Piece piece(first, known, manner);
        Outcome whole = piece.request(end - base);
        for (const RecordId &id : row) {
            if (EndOf(id) > end)
                break;
            all.push_back(id.kind == RecordKind::Loco ? ReadLocoFrom(piece, id) : ReadPictureFrom(piece, id));
            whole.keep(all.back().outcome);
            if (!whole.ok())
                break; // a handheld that was restarted has lost its buffer: what follows needs a flash read of its own
        }
        keptAddress = whole.ok() && all.size() < row.size() ? FirstByteOf(row[all.size()]) : -1;
        kept = piece.bytes(keptAddress, keptAddress < 0 ? 0 : piece.sureEnd(keptAddress, end) - keptAddress);
        return whole;
    }));
    return all;
}

} // namespace hr::handheld
