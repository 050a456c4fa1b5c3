#include "platform/qt/win_serial_port.h"

#include "platform/port_name.h"

#include <QMap>
#include <QWinEventNotifier>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include <windows.h>

#include <setupapi.h>

namespace hr::platform
{

namespace
{

constexpr DWORD BlockSize = 512;
constexpr int HighestPort = 256;
constexpr int QueueSize = 4096; // of the driver; a proposal only

std::wstring DevicePath(const QString &name)
{
    return (name.startsWith(u'\\') ? name : QStringLiteral("\\\\.\\") + name).toStdWString();
}

BYTE ParityOf(const QString &letter)
{
    if (letter == u"e")
        return EVENPARITY;
    return letter == u"o" ? ODDPARITY : NOPARITY;
}

/// A text that the system keeps about a device; empty when it has none.
QString DeviceText(HDEVINFO devices, SP_DEVINFO_DATA &device, DWORD property)
{
    std::array<wchar_t, MAX_PATH> text{};
    const auto size = static_cast<DWORD>(sizeof(wchar_t) * (text.size() - 1));
    const BOOL found = SetupDiGetDeviceRegistryPropertyW(
        devices, &device, property, nullptr, reinterpret_cast<BYTE *>(text.data()), size, nullptr);
    return found != FALSE ? QString::fromWCharArray(text.data()) : QString();
}

/// "COM3" of a device; empty when it is no serial port.
QString PortNameOf(HDEVINFO devices, SP_DEVINFO_DATA &device)
{
    HKEY key = SetupDiOpenDevRegKey(devices, &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_READ);
    if (key == INVALID_HANDLE_VALUE)
        return {};
    std::array<wchar_t, MAX_PATH> name{};
    auto size = static_cast<DWORD>(sizeof(wchar_t) * (name.size() - 1));
    const LSTATUS status =
        RegQueryValueExW(key, L"PortName", nullptr, nullptr, reinterpret_cast<BYTE *>(name.data()), &size);
    RegCloseKey(key);
    return status == ERROR_SUCCESS ? QString::fromWCharArray(name.data()) : QString();
}

/// Whether a device on this bus ("USB", "FTDIBUS", ...) was plugged in: not the lines of the board and of its cards, and
/// not the two ports that Windows makes for each paired radio device.
bool IsPlugBus(const QString &bus)
{
    constexpr std::array<QLatin1String, 6> others{QLatin1String("ACPI"), QLatin1String("PCI"), QLatin1String("MF"),
        QLatin1String("ISAPNP"), QLatin1String("ROOT"), QLatin1String("BTH")};
    return std::none_of(others.begin(), others.end(),
        [&bus](QLatin1String other) { return bus.startsWith(other, Qt::CaseInsensitive); });
}

/// What the system knows of its serial ports, by their names.
QMap<QString, PortEntry> DescribedPorts()
{
    QMap<QString, PortEntry> ports;
    const GUID serialPorts{0x86E0D1E0, 0x8089, 0x11D0, {0x9C, 0xE4, 0x08, 0x00, 0x3E, 0x30, 0x1F, 0x73}};
    const HDEVINFO devices =
        SetupDiGetClassDevsW(&serialPorts, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    if (devices == INVALID_HANDLE_VALUE)
        return ports;
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    for (DWORD i = 0; SetupDiEnumDeviceInfo(devices, i, &device) != FALSE; ++i) {
        const QString name = PortNameOf(devices, device);
        const bool pluggedIn = IsPlugBus(DeviceText(devices, device, SPDRP_ENUMERATOR_NAME));
        ports.insert(name, {name, DeviceText(devices, device, SPDRP_DEVICEDESC), pluggedIn});
    }
    SetupDiDestroyDeviceInfoList(devices);
    return ports;
}

/// One request to the driver that goes on while the program does, and the event that tells its end.
struct Request {
    Request() { state.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr); }
    ~Request() { CloseHandle(state.hEvent); }
    Request(const Request &) = delete;
    Request &operator=(const Request &) = delete;

    OVERLAPPED state{};
    bool running = false;
};

} // namespace

// The open device: one read is always under way, and one write while anything is left to be written.
class WinSerialPort::Device
{
public:
    explicit Device(HANDLE openHandle);
    ~Device();
    Device(const Device &) = delete;
    Device &operator=(const Device &) = delete;

    [[nodiscard]] HANDLE system() const { return handle; }
    void start() { beginRead(); }
    void shut();
    void discardOutput();
    void write(const QByteArray &bytes);
    [[nodiscard]] bool outputEmpty() const { return queued.isEmpty() && !writeRequest.running; }

    QByteArray received;
    std::function<void()> onReceived;
    std::function<void()> onLost;

private:
    void beginRead();
    void endRead();
    void beginWrite();
    void endWrite();
    bool accepted(BOOL result, Request &request);
    bool finish(Request &request, DWORD &count);
    void cancel(Request &request);

    HANDLE handle;
    Request readRequest;
    Request writeRequest;
    std::array<char, BlockSize> block{};
    QByteArray queued;
    QByteArray leaving; // what the write under way points to
    QWinEventNotifier readEnd;
    QWinEventNotifier writeEnd;
};

WinSerialPort::Device::Device(HANDLE openHandle)
    : handle(openHandle), readEnd(readRequest.state.hEvent), writeEnd(writeRequest.state.hEvent)
{
    QObject::connect(&readEnd, &QWinEventNotifier::activated, &readEnd, [this] { endRead(); });
    QObject::connect(&writeEnd, &QWinEventNotifier::activated, &writeEnd, [this] { endWrite(); });
}

WinSerialPort::Device::~Device()
{
    shut();
}

void WinSerialPort::Device::shut()
{
    if (handle == INVALID_HANDLE_VALUE)
        return;
    readEnd.setEnabled(false);
    writeEnd.setEnabled(false);
    cancel(readRequest);
    cancel(writeRequest);
    CloseHandle(handle);
    handle = INVALID_HANDLE_VALUE;
}

// The driver writes into this object until the request has ended.
void WinSerialPort::Device::cancel(Request &request)
{
    DWORD count = 0;
    if (!request.running)
        return;
    CancelIoEx(handle, &request.state);
    GetOverlappedResult(handle, &request.state, &count, TRUE);
    request.running = false;
}

bool WinSerialPort::Device::accepted(BOOL result, Request &request)
{
    request.running = result != FALSE || GetLastError() == ERROR_IO_PENDING;
    if (!request.running)
        onLost();
    return request.running;
}

bool WinSerialPort::Device::finish(Request &request, DWORD &count)
{
    request.running = false;
    const bool good = GetOverlappedResult(handle, &request.state, &count, FALSE) != FALSE;
    const DWORD problem = good ? ERROR_SUCCESS : GetLastError();
    ResetEvent(request.state.hEvent);
    if (problem != ERROR_SUCCESS && problem != ERROR_OPERATION_ABORTED) {
        onLost();
        return false;
    }
    return true;
}

// A read ends when it has all the bytes it asked for: so it asks for what is there, or for the next byte.
void WinSerialPort::Device::beginRead()
{
    COMSTAT state{};
    DWORD lineErrors = 0;
    ClearCommError(handle, &lineErrors, &state);
    const DWORD count = std::clamp<DWORD>(state.cbInQue, 1, BlockSize);
    accepted(ReadFile(handle, block.data(), count, nullptr, &readRequest.state), readRequest);
}

void WinSerialPort::Device::endRead()
{
    DWORD count = 0;
    if (!finish(readRequest, count))
        return;
    received.append(block.data(), static_cast<qsizetype>(count));
    beginRead();
    if (count > 0)
        onReceived(); // last: it may close the device
}

void WinSerialPort::Device::beginWrite()
{
    leaving = std::exchange(queued, {});
    accepted(WriteFile(handle, leaving.constData(), static_cast<DWORD>(leaving.size()), nullptr, &writeRequest.state),
        writeRequest);
}

void WinSerialPort::Device::endWrite()
{
    DWORD count = 0;
    if (finish(writeRequest, count) && !queued.isEmpty())
        beginWrite();
}

void WinSerialPort::Device::write(const QByteArray &bytes)
{
    queued += bytes;
    if (!writeRequest.running && !queued.isEmpty())
        beginWrite();
}

void WinSerialPort::Device::discardOutput()
{
    queued.clear();
    PurgeComm(handle, PURGE_TXABORT | PURGE_TXCLEAR);
}

WinSerialPort::WinSerialPort(Events &eventLoop) : events(eventLoop) { }

WinSerialPort::~WinSerialPort() = default;

void WinSerialPort::setPortName(const QString &portText)
{
    portDevice = PortDevice(portText);
}

void WinSerialPort::setSettings(const QString &text)
{
    settings = text;
    if (usable())
        applyLine();
}

bool WinSerialPort::applyLine()
{
    const QStringList fields = settings.split(u',');
    Q_ASSERT(fields.size() == 4);
    DCB line{};
    line.DCBlength = sizeof line;
    if (GetCommState(device->system(), &line) == FALSE)
        return false;
    line.BaudRate = fields.at(0).toUInt();
    line.Parity = ParityOf(fields.at(1));
    line.ByteSize = static_cast<BYTE>(fields.at(2).toUInt());
    line.StopBits = fields.at(3) == u"2" ? TWOSTOPBITS : ONESTOPBIT;
    line.fBinary = TRUE;
    line.fParity = line.Parity != NOPARITY;
    line.fOutxCtsFlow = flow == Handshake::RtsCts;
    line.fOutxDsrFlow = FALSE;
    line.fDsrSensitivity = FALSE;
    line.fOutX = FALSE;
    line.fInX = FALSE;
    line.fErrorChar = FALSE;
    line.fNull = FALSE;
    line.fAbortOnError = FALSE;
    line.fDtrControl = dtr.value_or(true) ? DTR_CONTROL_ENABLE : DTR_CONTROL_DISABLE;
    line.fRtsControl = rts.value_or(true) ? RTS_CONTROL_ENABLE : RTS_CONTROL_DISABLE;
    if (flow == Handshake::RtsCts)
        line.fRtsControl = RTS_CONTROL_HANDSHAKE;
    return SetCommState(device->system(), &line) != FALSE;
}

bool WinSerialPort::open()
{
    close();
    openFault = PortFault::NotThere;
    if (portDevice.isEmpty())
        return false;
    const HANDLE handle = CreateFileW(DevicePath(portDevice).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
        OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        const DWORD error = GetLastError();
        const bool inUse = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
        openFault = inUse ? PortFault::InUse : error == ERROR_FILE_NOT_FOUND ? PortFault::NotThere : PortFault::Other;
        return false;
    }
    openFault = PortFault::Other;
    hungUp = false;
    device = std::make_unique<Device>(handle);
    COMMTIMEOUTS timeouts{}; // none
    SetupComm(handle, QueueSize, QueueSize);
    if (!applyLine() || SetCommTimeouts(handle, &timeouts) == FALSE) {
        close();
        return false;
    }
    PurgeComm(handle, PURGE_RXABORT | PURGE_RXCLEAR | PURGE_TXABORT | PURGE_TXCLEAR);
    device->onReceived = [this] { handleReceived(); };
    device->onLost = [this] { handleLoss(); };
    device->start();
    openFault = PortFault::None;
    return true;
}

void WinSerialPort::applyModemLines()
{
    // Some adapters have no such lines; that is no reason to refuse them.
    if (dtr)
        EscapeCommFunction(device->system(), *dtr ? SETDTR : CLRDTR);
    if (rts && flow != Handshake::RtsCts)
        EscapeCommFunction(device->system(), *rts ? SETRTS : CLRRTS);
}

// It may be called from a handler of the device: the device is shut at once and deleted from the event loop.
void WinSerialPort::close()
{
    ++opening;
    if (!device)
        return;
    device->shut();
    events.post([old = std::shared_ptr<Device>(std::move(device))] {});
}

bool WinSerialPort::isOpen() const
{
    return device != nullptr; // also between a loss and its report, so that nobody sees one without the other
}

bool WinSerialPort::usable() const
{
    return device != nullptr && !hungUp;
}

void WinSerialPort::setHandshake(Handshake handshake)
{
    flow = handshake;
    if (usable())
        applyLine();
}

void WinSerialPort::setDtr(bool on)
{
    dtr = on;
    if (usable())
        applyModemLines();
}

void WinSerialPort::setRts(bool on)
{
    rts = on;
    if (usable())
        applyModemLines();
}

void WinSerialPort::setBreak(bool on)
{
    if (!usable())
        return;
    if (on)
        SetCommBreak(device->system());
    else
        ClearCommBreak(device->system());
}

bool WinSerialPort::cts() const
{
    DWORD lines = 0;
    if (!usable() || GetCommModemStatus(device->system(), &lines) == FALSE)
        return true;
    return (lines & MS_CTS_ON) != 0;
}

void WinSerialPort::setInputLength(int bytes)
{
    inputLength = bytes;
}

void WinSerialPort::setInputBufferSize(int bytes)
{
    Q_UNUSED(bytes) // the buffer grows as needed
}

void WinSerialPort::setOutputBufferSize(int bytes)
{
    Q_UNUSED(bytes)
}

void WinSerialPort::setReceiveThreshold(int bytes)
{
    receiveThreshold = bytes;
}

void WinSerialPort::discardOutput()
{
    if (usable())
        device->discardOutput();
}

bool WinSerialPort::outputEmpty() const
{
    return !usable() || device->outputEmpty();
}

int WinSerialPort::bytesWaiting() const
{
    return usable() ? static_cast<int>(device->received.size()) : 0;
}

QByteArray WinSerialPort::read()
{
    if (!usable())
        return {};
    QByteArray &received = device->received;
    const qsizetype count = inputLength > 0 ? std::min<qsizetype>(inputLength, received.size()) : received.size();
    const QByteArray bytes = received.left(count);
    received.remove(0, count);
    return bytes;
}

void WinSerialPort::write(const QByteArray &bytes)
{
    if (usable())
        device->write(bytes);
}

QList<PortEntry> WinSerialPort::availablePorts() const
{
    const QMap<QString, PortEntry> described = DescribedPorts();
    QList<PortEntry> ports;
    std::array<wchar_t, MAX_PATH> target{};
    for (int number = 1; number <= HighestPort; ++number) {
        const QString name = QStringLiteral("COM%1").arg(number);
        if (QueryDosDeviceW(name.toStdWString().c_str(), target.data(), static_cast<DWORD>(target.size())) != 0)
            ports += described.value(name, {name, {}, false});
    }
    // Adapters that somebody has plugged in stand before the lines of the board.
    std::stable_sort(ports.begin(), ports.end(),
        [](const PortEntry &one, const PortEntry &other) { return one.pluggedIn && !other.pluggedIn; });
    return ports;
}

void WinSerialPort::handleReceived()
{
    if (receiveThreshold > 0 && bytesWaiting() >= receiveThreshold && onReceive)
        onReceive();
}

void WinSerialPort::handleLoss()
{
    if (hungUp)
        return;
    hungUp = true;
    const int lost = opening;
    events.post([this, lost] {
        if (lost != opening)
            return;
        close();
        if (onHangUp)
            onHangUp();
    });
}

} // namespace hr::platform
