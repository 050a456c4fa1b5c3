// One request and its answer: the only way in which the program asks a device something, and the only place where an answer
// is believed.
//
// A request waits for the free message slot (3 s at most), is laid, and its answer is awaited for 2 s from then on,
// while events go on. Where an older request of the same kind is still owed its answer (5 s from its sending), the next one
// waits until that has come or cannot come any more (link/message_layer.h). After an answer that only a second handheld can
// have given nothing is asked any more (SecondHandheld) until the next search.
//
// 31-byte requests to the handheld: 0xED 0x1F 0x08 0x66 0x33, then five groups of a collector byte and four data bytes.
#pragma once

#include "link/message_layer.h"

namespace hr::link
{

constexpr double AnswerSeconds = 2;
constexpr double SlotSeconds = 3;
constexpr double SecondAnswerSeconds = 0.2; // a second handheld answers within it

/// A request under construction. Data bytes may use all eight bits; they are packed when the request is sent.
struct Request {
    LocoNetMessage bytes{};

    /// A memory transfer request with all data bytes 0.
    static Request toHandheld();

    /// Data byte D1..D20 (number 1..20).
    void setData(size_t number, int value);
};

/// What the user learns of a request that fails. Silently: a message whose echo does not come either is not told.
enum class Tells { Yes, No };

/// Sends a request and awaits the handheld's acknowledge with the code 127. Outcomes: done, NotSent, NoAnswer, Refused
/// (another code came, then nothing more), SecondHandheld, PortLost, ProgramEnds.
Outcome ExchangeForAck(const Request &request, Tells tells = Tells::Yes);

/// Sends a request and awaits 20 bytes of the handheld's buffer. A damaged answer is asked for once more. After a failure
/// the value is not to be used, except with the outcome Damaged: then it is what came, twice with a wrong checksum.
Result<SliceBytes> ExchangeForReadBack(const Request &request, Tells tells = Tells::Yes);

/// Leaves the line alone for so long before the next request.
void RestLine(double seconds);

/// Listens for answers that nobody waits for. False when one came that only a second handheld can have given, now or
/// before.
[[nodiscard]] bool OnlyOneAnswers(double seconds = SecondAnswerSeconds);

/// The two halves of ExchangeForAck: done as soon as the request is laid, and the wait for its acknowledge. A second
/// handheld does not keep it from being sent.
Outcome SendOnly(const Request &request);
Outcome AwaitAck(Tells tells = Tells::Yes);

// --- The parts, for requests with other rules (the command station). ---

/// Waits for the free slot and lays the message. Outcomes: done, NotSent after 3 s, PortLost, ProgramEnds.
Outcome LayWhenFree(const LocoNetMessage &message, int lastIndex, Expects answer = Expects::Nothing);

/// Waits until the condition holds. Outcomes: done, NoAnswer after the time, PortLost, ProgramEnds.
Outcome Await(const std::function<bool()> &answered, double seconds = AnswerSeconds);

void ResetExchange();

} // namespace hr::link
