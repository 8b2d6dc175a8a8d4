// Two serial lines on one panel, in one process: each line has its own copy of the driver.
//
//   two_lines LIBRARY DEVICE DEVICE
//
// On each line, the program writes a different value to holding register 100 of station 1, and
// reads registers 100 to 103 for two seconds.
#include <velko_modbus_rtu.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QSerialPort>
#include <QTemporaryDir>
#include <QThread>

#include <dlfcn.h>

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

// A loaded copy of the driver. The loader loads a file only once, so each line loads a copy of the
// file. A linked host, or two handles of the same file, would share one set of lists and values.
class DriverCopy
{
public:
    explicit DriverCopy(const QString &library) : m_handle(loadCopy(library))
    {
        resolve(SetComInfo, "SetComInfo");
        resolve(ReCreatReadVarList, "ReCreatReadVarList");
        resolve(ComCommunication, "ComCommunication");
        resolve(DataCom, "DataCom");
        resolve(GetRegisterData, "GetRegisterData");
        resolve(SetRegisterData, "SetRegisterData");
    }
    decltype(&::SetComInfo) SetComInfo;
    decltype(&::ReCreatReadVarList) ReCreatReadVarList;
    decltype(&::ComCommunication) ComCommunication;
    decltype(&::DataCom) DataCom;
    decltype(&::GetRegisterData) GetRegisterData;
    decltype(&::SetRegisterData) SetRegisterData;

private:
    typedef std::unique_ptr<void, int (*)(void *)> Handle;

    static Handle loadCopy(const QString &library)
    {
        const QTemporaryDir folder; // removed at the end of the scope; the loaded file stays usable
        const QString copy = folder.filePath("driver.so");
        if (!QFile::copy(library, copy))
            throw std::runtime_error("cannot copy " + library.toStdString() + " to "
                                     + folder.path().toStdString());
        Handle handle(dlopen(qPrintable(copy), RTLD_NOW | RTLD_LOCAL), dlclose);
        if (!handle)
            throw std::runtime_error(dlerror());
        return handle;
    }

    template <typename Function> void resolve(Function &function, const char *name)
    {
        function = reinterpret_cast<Function>(dlsym(m_handle.get(), name));
        if (!function)
            throw std::runtime_error(std::string("the library does not export ") + name);
    }

    Handle m_handle;
};

// One line: its port, its copy of the driver and its communication thread.
class Line : public QThread
{
public:
    Line(const QString &library, const QString &device) : m_driver(library), m_device(device)
    {
        m_info.maxRegs = 100;
        m_info.defaultStation = 1;
        m_info.retryLimit = 2;
        m_info.commMode = COMM_DEVICE;
        m_driver.SetComInfo(&m_info);
        VAR_ITEM item;
        item.kind = KIND_HOLDING_WORD;
        item.addrText = "100";
        item.length = 4;
        const QList<VAR_ITEM> items = {item};
        m_driver.ReCreatReadVarList(&items);
    }

    // write() and read() can be called from any thread: they take the driver's locks.
    void write(int value)
    {
        const char bytes[] = {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8)};
        const QByteArray registers(bytes, 2); // low byte first
        m_driver.SetRegisterData("", KIND_HOLDING_WORD, "100", 1, &registers, 1, 1, 0);
    }

    int read() const
    {
        QByteArray value;
        if (m_driver.GetRegisterData(0, KIND_HOLDING_WORD, "100", 1, &value, 1) == 0)
            throw std::runtime_error("the driver refuses the address");
        return static_cast<unsigned char>(value.at(0))
               + 256 * static_cast<unsigned char>(value.at(1));
    }

    // Valid after the thread has ended.
    int good() const { return m_good; }
    int sent() const { return m_sent; }
    QString error() const { return m_error; }

protected:
    void run() override
    {
        QSerialPort port(m_device);
        port.setBaudRate(19200);
        if (!port.open(QIODevice::ReadWrite)) {
            m_error = port.errorString();
            return;
        }
        QElapsedTimer time;
        for (time.start(); time.elapsed() < 2000;) {
            const Protocol *const request = m_driver.ComCommunication();
            if (!request) {
                msleep(1); // no request in this turn
                continue;
            }
            msleep(5); // more than the silent interval of 3.5 characters
            const QByteArray reply = exchange(port, request->frame, request->replyLen);
            ++m_sent;
            const int verdict = m_driver.DataCom(&reply, reply.size())->retCode;
            if (velko_result_is_good(verdict))
                ++m_good;
            if (verdict != RESULT_WILL_REPEAT)
                m_info.retryCount = 0; // count the failures of each request separately
        }
    }

private:
    static QByteArray exchange(QSerialPort &port, const QByteArray &frame, int replyLength)
    {
        port.clear(QSerialPort::Input); // discard a late reply
        port.write(frame);
        port.waitForBytesWritten(100);
        QByteArray reply;
        while (reply.size() < replyLength && port.waitForReadyRead(200))
            reply += port.read(replyLength - reply.size());
        return reply;
    }

    DriverCopy m_driver;
    ComInfo m_info; // the driver keeps its address
    QString m_device;
    QString m_error;
    int m_sent = 0;
    int m_good = 0;
};

namespace
{

bool report(const Line &line, const char *name)
{
    if (!line.error().isEmpty()) {
        std::fprintf(stderr, "two_lines: %s: %s\n", name, qPrintable(line.error()));
        return false;
    }
    if (line.good() == 0) {
        std::fprintf(stderr, "two_lines: %s: station 1 does not respond\n", name);
        return false;
    }
    std::printf("%s: register 100 is %d; %d of %d exchanges were good\n", name, line.read(),
                line.good(), line.sent());
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc != 4) {
        std::fprintf(stderr, "usage: two_lines LIBRARY DEVICE DEVICE\n");
        return 2;
    }
    try {
        Line first(argv[1], argv[2]);
        Line second(argv[1], argv[3]);
        first.write(1111);
        second.write(2222);
        first.start();
        second.start();
        first.wait();
        second.wait();
        const bool firstIsGood = report(first, "first line");
        return report(second, "second line") && firstIsGood ? 0 : 1;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "two_lines: %s\n", error.what());
        return 1;
    }
}
