// LocoNet message layer: one outgoing message slot, the echo and acknowledge rules, the assembly of received
// bytes into messages in a ring, and their dispatch by opcode.
//
// A caller lays the bytes of a message in TxMsg[0..n] and sets TxLen := n last. SendTask() adds the checksum and
// transmits; the slot is free again (TxLen = -1) when the message's own echo has come back, or after 2 seconds
// without it, which the user sees as "Message kann nicht gesendet werden!" / "LocoNet Fehler".
//
// 31-byte messages (opcode 0xED sent, 0xE5 received):
//   byte 0      opcode
//   byte 1      0x1F, the length
//   byte 2      8 in requests, 1 in the command station's answers
//   bytes 3-4   identification pair
//   bytes 5, 10, 15, 20, 25   collectors: bits 0-3 carry bit 7 of the four bytes that follow, bits 4-6 command bits
//   the other 20 bytes up to 29   data D1..D20 with bit 7 removed
//   byte 30     checksum
#pragma once

#include <QtGlobal>

#include <array>
#include <functional>

constexpr int MaxMessageIndex = 64;
constexpr int RingSlots = 32;
constexpr int TransferMessageLength = 0x1F; // bytes of a 31-byte message, also its byte 1
constexpr int TransferLastIndex = 29;       // last byte before the checksum

constexpr int OpcodePeerTransfer = 0xE5;
constexpr int OpcodeImmediate = 0xED;
constexpr int OpcodeLongAck = 0xB4;
constexpr int OpcodeLocoAddress = 0xBF;
constexpr int AckAccepted = 0x7F;

using LocoNetMessage = std::array<quint8, MaxMessageIndex + 1>;

// --- Transmit side: callers lay a message when TxLen is -1; SendTask and DispatchTask write the rest. ---
extern LocoNetMessage TxMsg; // bytes 0..TxLen, checksum at TxLen + 1
extern int TxLen;            // index of the last byte before the checksum; -1 = slot free
extern bool TxWaitEcho;      // written to the port, echo not received yet
extern double TxTime;        // time of day at which the message was written
extern bool AwaitingAck;     // from the echo of a message that expects a reply to the next received message
extern int AckOpcode;        // opcode of that message
extern int AckImmByte;       // byte 5 of the last echoed 0xED message

// --- Receive side: written by ReceiveBytes, RxRead and RxEmpty also by DispatchTask. ---
extern std::array<LocoNetMessage, RingSlots + 1> RxRing; // slots 0..31 are used
extern int RxWrite;                                      // slot of the last complete message
extern int RxSlot;                                       // slot being filled
extern int RxRead;                                       // slot last dispatched
extern int RxCount;                                      // index of the byte being stored, -1 before the opcode
extern int RxExpected;   // length in bytes with opcode and checksum; -1 until the length byte arrives
extern bool RxInMessage; // between an opcode and the message's last byte
extern bool RxEmpty;     // every complete message has been dispatched
extern bool RxOverflow;  // ring full: new messages overwrite the newest complete one

// --- Answers, written by DispatchTask. ---
extern int LastAckCode;              // code of the last long acknowledge of an 0xED message
extern int LocoAdrReply;             // 128 x byte 1 + byte 2 of the last 0xBF message
extern bool HandheldMode;            // true: 0xE5 messages belong to the memory transfer, false: to the download
extern bool RawReplyWanted;          // true: the next 0xE5 message is captured in RawReply
extern std::array<int, 25> RawReply; // five collectors, then D1..D20, as received

extern std::array<int, 5> RawReplyHead; // bytes 0..4 of the message in RawReply: who sent it

/// The handheld's SPI buffer as the PC sees it, index 0..512, one byte value each. Filled by callers before a
/// write and by received read-backs.
constexpr int SpiBufSize = 513;
extern std::array<int, SpiBufSize> SpiBuf;
extern int SpiReadStart; // where the 20 bytes of the pending read-back go
extern int SpiReadDone;  // 1 when they have come

/// Receives each 0xE5 message while HandheldMode is false (the command-station download registers itself).
extern std::function<void(const LocoNetMessage &)> DownloadAnswerCheck;

/// True while the text set-up of an interface owns the received bytes; ReceiveBytes leaves them alone then.
extern bool PortInTextMode;

/// Transmits a laid message or supervises the echo of the sent one. Run every 50 ms, never waits: where CTS is
/// off, an interface of kind 1 gets the rest of the message as soon as CTS comes back, at most 3 s after the
/// start of the transmission.
void SendTask();

/// Handles one received message. Run every 50 ms after SendTask.
void DispatchTask();

/// Reads all waiting bytes and assembles messages. Run by the port's receive event and every 100 ms.
void ReceiveBytes();

/// Moves bit 7 of the 20 data bytes of the message in TxMsg into the collector bytes, whose other bits stay.
void PackHighBits();

/// Restores bit 7 of the 20 data bytes of a received message from its collectors.
void UnpackHighBits(LocoNetMessage &message);

/// Copies the 25 raw bytes (collectors, then D1..D20) of a 31-byte message.
void CopyRawBytes(const LocoNetMessage &message, std::array<int, 25> &raw);

/// Frees the slot and forgets what was received and not dispatched: the port was closed or lost.
void DropPendingMessage();

void ResetMessageLayer();
