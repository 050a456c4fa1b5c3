// The five commands by which the handheld's dataflash is read and written, and the sequences built of them.
//
// The PC fills the handheld's SPI buffer in slices of 20 bytes and lets the handheld clock it through the flash
// chip; what the chip answers replaces the buffer and is read back in slices of 20 bytes.
//
// Message (31 bytes): 0xED 0x1F 0x08 0x66 0x33, then five groups of a collector byte and four data bytes.
//   byte 10 bits 4-6   0x10 = clock the first N buffer bytes through the chip (N in byte 29),
//                      0x20 = answer with 20 buffer bytes from the start index, 0 = store only
//   byte 15 bit 4      bit 6 of the buffer start index
//   byte 20 bits 4-6   bits 3-5 of it
//   byte 25 bits 4-6   bits 0-2 of it
//
// Every command is one message; it waits for the acknowledge code 127 (or the read-back) for 2 seconds while
// events go on. Status 0 = answered. Status 1 = time-out, after a box "Timeout" (critical) titled with the
// command's name; also, without a box, when the port is closed or lost and when the program ends.
#pragma once

#include "link/message_layer.h"

#include <functional>

constexpr int ReadPosition = 8;  // first data byte in SpiBuf after a read
constexpr int WritePosition = 4; // first data byte in SpiBuf for a write
constexpr int SliceSize = 20;
constexpr int MaxSliceStart = 127;

/// Reads count flash bytes from a byte address into the handheld's buffer, from index 8 on. Index 8 + count - 1
/// must not exceed 146, the last byte a read-back can reach.
void read_flash_to_spibuf(int address, int count, int &status);

/// Reads 20 bytes of the handheld's buffer into SpiBuf[start .. start + 19]; start is 0..127.
void read_spibuf(int start, int &status);

/// Writes SpiBuf[start .. start + 19] to the handheld's buffer; start is 0..127. With an execute length other than
/// 0 the twentieth byte is that length instead of data, and the handheld clocks so many bytes through the chip.
void write_to_spibuf(int start, int executeLength, int &status);

/// Loads the page that holds the address into the chip's buffer 1.
void move_spibuf_to_buf1(int address, int &status);

/// Programs buffer 1 into the page that holds the address. Its time-out box is titled "move_spibuf_to_buf1".
void write_buf1_to_flash(int address, int &status);

/// Reads n bytes (1..128) at a flash address into SpiBuf[8 ..]: one flash read, then the slices that cover them.
/// Goes on after a time-out; returns 1 if any step failed.
int ReadFlash(int address, int n);

/// read_spibuf with the starts first, first + 20, ... last.
int ReadSlices(int first, int last);

/// Lays the buffer-write command for a page offset at SpiBuf[0..3].
void LayBufferWrite(int pageOffset);

/// write_to_spibuf with the starts 0, 20, ... below last, then start last with the execute length. Goes on after
/// a time-out; returns 1 if any step failed.
int WriteSlices(int last, int executeLength);

/// SpiBuf[4 + i] := SpiBuf[8 + i] for i = 0 .. lastIndex: from read position to write position.
void MoveToWritePosition(int lastIndex);

/// Lays the first bytes of a transfer message into the cleared TxMsg.
void BeginTransferMessage();

/// Hands the message in TxMsg[0..29] to the message layer, as soon as its slot is free.
void SendTransferMessage();

/// Waits for the condition. Status 1 after more than 2 s (with a "Timeout" box when a title is given), or at once
/// when the port is closed or waits must end. A wait that spans midnight ends only with the answer.
int AwaitAnswer(const std::function<bool()> &answered, const QString &boxTitle);
