// LocoNet message layer: one outgoing message slot, the echo and acknowledge rules, the assembly of received
// bytes into messages in a ring, and their dispatch by opcode.
//
// LayMessage() lays the bytes of a message in TxMsg[0..n] and sets TxLen := n last. SendTask() adds the checksum and
// transmits; the slot is free again (TxLen = -1) when the message's own echo has come back, or after 2 seconds
// without it, which the user sees as "Message kann nicht gesendet werden!" / "LocoNet Fehler". Requests that want an
// answer go through link/exchange.h.
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

#include "program/outcome.h"

#include <QtGlobal>

#include <array>
#include <functional>
#include <span>

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
extern double TxTime;        // NowSeconds() at which the message was written
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

/// The read-back that is awaited. Only an answer that can belong to it is taken; all others are late or foreign.
extern bool SpiReadWanted; // set when the request is laid, cleared by its answer and when it is given up
extern int SpiReadDone;    // 1 when the answer has come
extern bool SpiReadSound;  // its checksum was right
extern std::array<quint8, 20> SpiReadData; // its bytes D1..D20 with their bit 7

/// Receives each 0xE5 message while HandheldMode is false (the command-station download registers itself).
extern std::function<void(const LocoNetMessage &)> DownloadAnswerCheck;

/// True while the text set-up of an interface owns the received bytes; ReceiveBytes leaves them alone then.
extern bool PortInTextMode;

/// A message as it came from the line, before it is handled.
struct Traffic {
    std::span<const quint8> bytes; // with the checksum; valid during the call
    bool checksumRight = false;
};
/// Sees every complete message, also echoes and the traffic of others. It must not wait.
void TapTraffic(std::function<void(const Traffic &)> tap);

/// Called when there is something to do: a message was laid, or one has come in completely. The driver registers itself.
void OnLinkWork(std::function<void()> work);

/// Lays a message (bytes 0..lastIndex; the checksum is added when it is sent). Nothing is laid, and the outcome says
/// why, when the slot is occupied (NotSent) or the port is closed (PortLost).
Outcome LayMessage(const LocoNetMessage &message, int lastIndex);

/// Forgets which answer was awaited: what still comes is late and belongs to nobody. An answer that comes before the
/// echo of the next request is then known to be late.
void ForgetAnswer();

/// Transmits a laid message or supervises the echo of the sent one. Run every 50 ms, never waits: where CTS is
/// off, an interface of kind 1 gets the rest of the message as soon as CTS comes back, at most 3 s after the
/// start of the transmission.
void SendTask();

/// Handles one received message. Run every 50 ms after SendTask. In the fast cadence one with a wrong checksum is passed
/// over.
void DispatchTask();

/// Reads all waiting bytes and assembles messages. Run by the port's receive event and every 100 ms.
void ReceiveBytes();

/// Moves bit 7 of the 20 data bytes of a message into the collector bytes, whose other bits stay.
void PackHighBits(LocoNetMessage &message);

/// Restores bit 7 of the 20 data bytes of a received message from its collectors.
void UnpackHighBits(LocoNetMessage &message);

/// Copies the 25 raw bytes (collectors, then D1..D20) of a 31-byte message.
void CopyRawBytes(const LocoNetMessage &message, std::array<int, 25> &raw);

/// Frees the slot of a message that was sent, when its request is given up: its echo is not waited for any more.
void DropUnansweredMessage();

/// Frees the slot and forgets what was received and not dispatched: the port was closed or lost.
void DropPendingMessage();

void ResetMessageLayer();
