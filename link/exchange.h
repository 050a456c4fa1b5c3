// One request and its answer: the only way in which the program asks a device something.
//
// A request waits for the free message slot (3 s at most), is laid, and its answer is awaited for 2 s from then on,
// while events go on. An answer that comes later is dropped: before the next request goes out the line is left alone
// for a moment, and nobody waits for the old answer any more, so that it never passes for the next one's.
//
// 31-byte requests to the handheld: 0xED 0x1F 0x08 0x66 0x33, then five groups of a collector byte and four data bytes.
#pragma once

#include "link/message_layer.h"

constexpr double AnswerSeconds = 2;
constexpr double SlotSeconds = 3;

/// A request under construction. Data bytes may use all eight bits; they are packed when the request is sent.
struct Request {
    LocoNetMessage bytes{};

    /// A memory transfer request with all data bytes 0.
    static Request toHandheld();

    /// Data byte D1..D20 (number 1..20).
    void setData(size_t number, int value);
};

/// Sends a request and awaits the handheld's acknowledge with the code 127. Outcomes: done, NotSent, NoAnswer, Refused
/// (another code came, then nothing more), PortLost, ProgramEnds.
Outcome ExchangeForAck(const Request &request);

/// Leaves the line alone for so long before the next request.
void RestLine(double seconds);

/// Sends a request and awaits 20 bytes of the handheld's buffer. After a failure the value is not to be used,
/// except with the outcome Damaged: then it is what came, with a wrong checksum.
Result<std::array<quint8, 20>> ExchangeForReadBack(const Request &request);

/// The two halves of ExchangeForAck: done as soon as the request is laid, and the wait for its acknowledge.
Outcome SendOnly(const Request &request);
Outcome AwaitAck();

// --- The parts, for requests with other rules (the command station). ---

/// Waits for the free slot and lays the message. Outcomes: done, NotSent after 3 s, PortLost, ProgramEnds.
Outcome LayWhenFree(const LocoNetMessage &message, int lastIndex);

/// Waits until the condition holds. Outcomes: done, NoAnswer after the time, PortLost, ProgramEnds.
Outcome Await(const std::function<bool()> &answered, double seconds = AnswerSeconds);

void ResetExchange();
