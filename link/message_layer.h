// LocoNet message layer: one outgoing message slot, the echo and acknowledge rules, the assembly of received
// bytes into messages in a ring, and their dispatch by opcode.
//
// lay() lays the bytes of a message in TxMsg[0..n] and sets TxLen := n last. SendTask() adds the checksum and
// transmits; the slot is free again (TxLen = -1) when the message's own echo has come back, or after 2 seconds
// without it, which the user sees as "Message kann nicht gesendet werden!" / "LocoNet Fehler". Requests that want an
// answer go through link/exchange.h.
//
// 31-byte messages (opcode 0xED sent, 0xE5 received):
//   byte 0      opcode
//   byte 1      0x1F, the length
//   byte 2      8 in requests, 1 in the command station's answers
//   bytes 3-4   identification pair: 0x66 0x33 between PC and handheld
//   bytes 5, 10, 15, 20, 25   collectors: bits 0-3 carry bit 7 of the four bytes that follow, bits 4-6 command bits
//   the other 20 bytes up to 29   data D1..D20 with bit 7 removed
//   byte 30     checksum
//
// Which answer is believed. On the bus an answer can only come behind its request. So the echo of a request ends the time
// of all earlier answers: what comes before it is held, and dropped by it. Only when no echo came until the limit, the one
// answer that is held is taken: the echo alone was lost. A request that got no answer in time is owed one: what comes up to
// OwedSeconds after it went out is late, belongs to nobody, and the next request of the same kind waits for that long.
// An answer or acknowledge that nobody waits for and that is not owed means that a second handheld answers.
#pragma once

#include "link/long_message.h"
#include "program/outcome.h"

#include <functional>
#include <map>
#include <optional>
#include <span>

namespace hr::link
{

constexpr int RingSlots = 32;

/// A message as it came from the line, before it is handled.
struct Traffic {
    std::span<const quint8> bytes; // with the checksum; valid during the call
    bool checksumRight = false;
    bool own = false; // the echo of the message in the slot
};

/// What a message is to be answered with.
enum class Expects {
    Nothing,
    Acknowledge, // by the handheld or the command station
    ReadBack,    // by 20 bytes of the handheld's buffer
};

/// Twenty bytes that the handheld has sent.
struct ReadBack {
    SliceBytes data{};  // D1..D20 with their bit 7
    bool sound = false; // the checksum was right
};

/// A 31-byte message as it was captured for the command-station download.
struct RawAnswer {
    std::array<quint8, 5> head{};   // bytes 0..4: who sent it
    std::array<quint8, 25> bytes{}; // five collectors, then D1..D20, as received
};

/// What the layer holds, by the names that are known for it.
struct MessageState {
    // --- Transmit side ---
    LocoNetMessage TxMsg{};   // bytes 0..TxLen, checksum at TxLen + 1
    int TxLen = -1;           // index of the last byte before the checksum; -1 = slot free
    bool TxWaitEcho = false;  // written to the port, echo not received yet
    double TxTime = 0;        // NowSeconds() at which the message was written
    bool AwaitingAck = false; // from the echo of a message that expects a reply to the next received message
    int AckOpcode = 0;        // opcode of that message
    int AckImmByte = 0;       // byte 5 of the last echoed 0xED message

    // --- Receive side ---
    std::array<LocoNetMessage, RingSlots + 1> RxRing{}; // slots 0..31 are used
    int RxWrite = 0;                                    // slot of the last complete message
    int RxSlot = 0;                                     // slot being filled
    int RxRead = 0;                                     // slot last dispatched
    int RxCount = -1;                                   // index of the byte being stored, -1 before the opcode
    int RxExpected = -1;      // length in bytes with opcode and checksum; -1 until the length byte arrives
    bool RxInMessage = false; // between an opcode and the message's last byte
    bool RxEmpty = true;      // every complete message has been dispatched
    bool RxOverflow = false;  // ring full: new messages overwrite the newest complete one

    // --- Answers ---
    int LastAckCode = 0;         // code of the last long acknowledge of an 0xED message; 0 from lay() on
    int LocoAdrReply = 0;        // 128 x byte 1 + byte 2 of the last 0xBF message
    bool HandheldMode = true;    // true: 0xE5 messages belong to the memory transfer, false: to the download
    bool RawReplyWanted = false; // true: the next 0xE5 message is captured in RawReply
    RawAnswer RawReply;
    int SpiReadDone = 0; // 1 when the awaited read-back has come
};

class MessageLayer : private MessageState
{
public:
    [[nodiscard]] const MessageState &state() const { return *this; }

    // --- Sending ---

    /// Lays a message (bytes 0..lastIndex; the checksum is added when it is sent) and says which answer is awaited.
    /// Nothing is laid, and the outcome says why, when the slot is occupied (NotSent) or the port is closed (PortLost).
    Outcome lay(const LocoNetMessage &message, int lastIndex, Expects answer = Expects::Nothing);

    /// True when a message can be laid.
    [[nodiscard]] bool slotFree() const { return TxLen == -1; }

    /// True when a message lies in the slot that has not begun to leave.
    [[nodiscard]] bool hasToSend() const { return TxLen != -1 && !TxWaitEcho && ctsPosition < 0; }

    /// True when the message laid last is on the line or was: not while it waits, and not when it was thrown away.
    [[nodiscard]] bool hasGoneOut() const { return goneOut; }

    /// True while a message is sent or awaits its echo, or received ones wait to be dispatched.
    [[nodiscard]] bool busy() const { return TxLen != -1 || !RxEmpty; }
    [[nodiscard]] bool hasReceived() const { return !RxEmpty; }

    // --- The answer to the message laid last ---

    /// The handheld has acknowledged with the code 127; with any code.
    [[nodiscard]] bool acknowledged() const { return LastAckCode == AckAccepted; }
    [[nodiscard]] std::optional<int> acknowledgeCode() const;

    /// The read-back that was awaited.
    [[nodiscard]] std::optional<ReadBack> readBack() const;

    /// The limit is over: takes the one read-back that came although no echo did. False when there is none for sure.
    bool takeHeldReadBack();

    /// Nobody waits for the answer any more. A message that has not begun to leave is taken out of the slot; one that has
    /// is owed its answer, and its echo frees the slot and nothing else. `silently`: nor does anybody wait for its echo.
    void giveUp(bool silently);

    /// For so many seconds an answer of this kind may still come late; 0 when none can.
    [[nodiscard]] double secondsOwed(Expects kind) const;

    /// Whoever passes the message in the slot on says that it was not sent: the slot is free, and the user sees the reason in
    /// the box of a message without an echo. It may have been on the bus all the same: its answer stays owed. Without effect
    /// when none waits for its echo.
    void refuse(const QString &reason);
    [[nodiscard]] bool refused() const { return wasRefused; }

    /// The answer just taken was damaged and is asked for again: another one may follow it.
    void expectRepeat();

    /// True once answers came that can only be a second handheld's, until forgetSecondHandheld().
    [[nodiscard]] bool secondHandheld() const { return strangeAnswers > 0; }
    [[nodiscard]] double secondHandheldSince() const { return strangeSince; }
    void forgetSecondHandheld() { strangeAnswers = 0; }

    // --- 0xE5 messages of the command station ---

    /// While a check is set, 0xE5 messages go to it and HandheldMode is false; until it returns true.
    void setDownloadAnswerCheck(std::function<bool(const LocoNetMessage &)> check);
    [[nodiscard]] bool downloadAnswerAwaited() const { return !HandheldMode; }

    /// Captures the next 0xE5 message raw, whoever sent it. What was captured so far is forgotten.
    void wantRawReply();
    void endRawReply() { RawReplyWanted = false; }
    [[nodiscard]] std::optional<RawAnswer> rawReply() const;

    // --- Driven from outside ---

    /// Transmits a laid message or supervises the echo of the sent one. Run every 50 ms, never waits: where CTS is
    /// off, an interface of kind 1 gets the rest of the message as soon as CTS comes back, at most 3 s after the
    /// start of the transmission.
    void SendTask();

    /// Handles one received message. Run every 50 ms after SendTask. In the fast cadence one with a wrong checksum is
    /// passed over.
    void DispatchTask();

    /// Reads all waiting bytes and assembles messages. Run by the port's receive event and every 100 ms.
    void ReceiveBytes();

    /// While the text set-up of an interface owns the received bytes, ReceiveBytes leaves them alone.
    void setTextMode(bool on) { textMode = on; }

    /// Sees every complete message, also echoes and the traffic of others, until endTap(). It must not wait, and must neither
    /// begin nor end a tap.
    using TapId = int;
    TapId tapTraffic(std::function<void(const Traffic &)> tap);
    void endTap(TapId tap) { trafficTaps.erase(tap); }

    /// Called when there is something to do: a message was laid, or one has come in completely.
    void onWork(std::function<void()> work) { linkWork = std::move(work); }

    /// Called once, from inside a dispatch, when a second handheld answers.
    void onSecondHandheld(std::function<void()> handler) { secondHandler = std::move(handler); }

    /// The port was closed or lost: frees the slot and forgets what was received, awaited and owed.
    void dropAll();

    /// As at the start of the program; who drives it stays.
    void reset();

private:
    // message_slot.cpp
    void layChecksum();
    void markAsWritten();
    void transmit();
    void transmitUnderCts(int id);
    void superviseEcho();
    static void tellNotSent(const QString &reason);
    void freeSlot();
    void tellWork();

    // message_assembly.cpp
    void receiveByte(quint8 byte);
    void startMessage(quint8 opcode);
    void storeByte(quint8 byte);
    void completeMessage();

    // message_dispatch.cpp
    void dispatchByOpcode(const LocoNetMessage &message);
    void takeAcknowledge(const LocoNetMessage &message);
    void takePeerTransfer(const LocoNetMessage &message);
    void takeReadBack(const ReadBack &answer);
    [[nodiscard]] bool isOwnEcho(const LocoNetMessage &message) const;
    void takeEcho();
    [[nodiscard]] bool endsWaitForAck(const LocoNetMessage &message, bool isEcho) const;
    void noteUnawaited(Expects kind);

    /// The answer that is awaited, from lay() to the next lay().
    struct Awaited {
        Expects kind = Expects::Nothing;
        bool wanted = false;  // neither taken nor given up
        bool echoed = false;  // the request has been on the bus
        bool ackCame = false; // with whatever code
        bool missed = false;  // it came, and did not count
        int held = 0;         // answers of this kind that came before the echo
        ReadBack readBack;    // taken, or held
    };

    /// What is remembered of the answers of a kind; moments are NowSeconds(), 0 = never.
    struct Past {
        double answered = 0;      // the last one that was taken
        double owedUntil = 0;     // one may still come late
        double forgivenUntil = 0; // one more is no wonder
    };
    Past &pastOf(Expects kind) { return past.at(static_cast<size_t>(kind)); }
    [[nodiscard]] const Past &pastOf(Expects kind) const { return past.at(static_cast<size_t>(kind)); }

    Awaited awaited;
    std::array<Past, 3> past;
    Expects lastEchoed = Expects::Nothing; // what the last own message on the bus was to be answered with
    double foreignImmediate = 0;           // NowSeconds() of the last 0xED message of another device; 0 = never

    bool goneOut = false;
    bool wasRefused = false; // the message laid last
    bool abandoned = false;  // the message in the slot was given up: its echo frees the slot and nothing else
    int ctsPosition = -1;    // next byte of a transmission that CTS holds up; -1 = none
    double ctsStart = 0;
    int transmission = 0; // counts transmissions, so that a stale look at CTS ends itself

    int strangeAnswers = 0;
    double strangeSince = 0;

    bool textMode = false;
    std::function<bool(const LocoNetMessage &)> downloadAnswerCheck;
    std::map<TapId, std::function<void(const Traffic &)>> trafficTaps;
    TapId lastTap = 0;
    std::function<void()> linkWork;
    std::function<void()> secondHandler;
};

/// The program's one message layer.
MessageLayer &TheMessages();

} // namespace hr::link
