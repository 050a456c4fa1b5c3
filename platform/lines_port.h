// A port that speaks LocoNet over TCP (platform/loconet_lines.h) over another port that carries the text.
#pragma once

#include "platform/loconet_lines.h"
#include "platform/stream_port.h"

namespace hr::platform
{

class LinesPort : public StreamPort
{
public:
    /// The carrier stays owned by the caller and outlives this object; its handlers belong to this object from now on.
    explicit LinesPort(SerialPort &textCarrier);

    /// Takes the carrier's handlers again after somebody else has used it.
    void takeCarrier();

    void setPortName(const QString &portText) override { carrier.setPortName(portText); }
    bool open() override;
    [[nodiscard]] PortFault fault() const override { return carrier.fault(); }
    [[nodiscard]] QString faultText() const override { return carrier.faultText(); }
    [[nodiscard]] bool connecting() const override { return carrier.connecting(); }
    void close() override;
    [[nodiscard]] bool isOpen() const override { return carrier.isOpen(); }
    [[nodiscard]] bool outputEmpty() const override { return carrier.outputEmpty(); }
    [[nodiscard]] int bytesWaiting() const override { return static_cast<int>(received.size()); }
    QByteArray read() override;
    void write(const QByteArray &bytes) override;

private:
    void takeText();

    SerialPort &carrier;
    LocoNetLines lines;
    QByteArray received;
};

} // namespace hr::platform
