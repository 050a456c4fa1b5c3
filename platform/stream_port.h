// What ports have in common that move bytes and have no lines of their own: nothing to set, CTS is always on.
#pragma once

#include "platform/serial_port.h"

namespace hr::platform
{

class StreamPort : public SerialPort
{
public:
    void setSettings(const QString &) override { }
    void setHandshake(Handshake) override { }
    void setDtr(bool) override { }
    void setRts(bool) override { }
    void setBreak(bool) override { }
    [[nodiscard]] bool cts() const override { return true; }
    void setInputLength(int bytes) override { inputLength = bytes; }
    void setInputBufferSize(int) override { }
    void setOutputBufferSize(int) override { }
    void setReceiveThreshold(int bytes) override { threshold = bytes; }
    void discardOutput() override { } // what was handed on cannot be called back

protected:
    /// Raises the receive event when so many bytes wait as it wants.
    void tellWaiting() const
    {
        if (threshold > 0 && bytesWaiting() >= threshold && onReceive)
            onReceive();
    }

    int inputLength = 0;
    int threshold = 1;
};

} // namespace hr::platform
