// What the driver keeps beyond a call is its own: a host may use the memory behind its texts and
// values again, and free it, as soon as the call has returned.
#include "tests/driver_under_test.h"

#include <functional>
#include <memory>

namespace
{

/// A name, an address and a value on the heap, as fromRawData() takes them: nothing is copied.
class HostMemory
{
public:
    HostMemory() : m_texts(new QChar[6]), m_value(new char[4])
    {
        const QString texts = "name10";
        std::copy(texts.begin(), texts.end(), m_texts.get());
        std::copy_n("\x12\x34\x56\x78", 4, m_value.get());
    }

    QString name() const { return QString::fromRawData(m_texts.get(), 4); }
    QString address() const { return QString::fromRawData(m_texts.get() + 4, 2); }
    QByteArray value() const { return QByteArray::fromRawData(m_value.get(), 4); }

    RW_VAR record(int kind, int addr, int count) const
    {
        RW_VAR record;
        record.varName = name();
        record.addrText = address();
        record.value = value();
        record.varKind = kind;
        record.addr = addr;
        record.count = count;
        record.station = 1;
        record.areaNo = 4;
        return record;
    }

    void overwrite()
    {
        std::fill_n(m_texts.get(), 6, QChar('9'));
        std::fill_n(m_value.get(), 4, '\xEE');
    }

    void release()
    {
        m_texts.reset();
        m_value.reset();
    }

private:
    std::unique_ptr<QChar[]> m_texts;
    std::unique_ptr<char[]> m_value;
};

struct Entry {
    const char *name;
    std::function<int(const DriverUnderTest &, const HostMemory &)> call;
    QList<RW_VAR> Modbus_RTU_Master::*list;
    const char *frame;
    const char *value; // of the record
};

template <int mode> int queueWrite(const DriverUnderTest &test, const HostMemory &memory)
{
    RW_VAR record = memory.record(KIND_HOLDING_WORD, 20, 2);
    record.rwFlag = REQUEST_WRITE;
    return test.driver.AddListWriteVar(&record, mode);
}

template <int mode> int queueRead(const DriverUnderTest &test, const HostMemory &memory)
{
    RW_VAR record = memory.record(KIND_HOLDING_WORD, 10, 2);
    return test.driver.AddListOnceReadVar(&record, mode);
}

int rebuild(const DriverUnderTest &test, const HostMemory &memory)
{
    VAR_ITEM item;
    item.kind = KIND_HOLDING_WORD;
    item.addrText = memory.address();
    item.varName = memory.name();
    item.length = 2;
    const QList<VAR_ITEM> items = {item};
    return test.driver.ReCreatReadVarList(&items);
}

const char *const WRITE_FRAME = "01 10 00 0A 00 02 04 34 12 78 56 7F DB";
const char *const READ_FRAME = "01 03 00 0A 00 02 E4 09";

const Entry ENTRIES[] = {
    {"SetRegisterData",
     [](const DriverUnderTest &test, const HostMemory &memory) {
         const QByteArray value = memory.value();
         return test.driver.SetRegisterData(memory.name(), KIND_HOLDING_WORD, memory.address(), 1,
                                            &value, 2, 0, 0);
     },
     &Modbus_RTU_Master::writeList, WRITE_FRAME, "12 34 56 78"},
    {"AddListWriteVar, checked", queueWrite<QUEUE_CHECKED>, &Modbus_RTU_Master::writeList,
     WRITE_FRAME, "12 34 56 78"},
    {"AddListWriteVar, unconditionally", queueWrite<QUEUE_UNCONDITIONALLY>,
     &Modbus_RTU_Master::writeList, WRITE_FRAME, "12 34 56 78"},
    {"AddListOnceReadVar, checked", queueRead<QUEUE_CHECKED>, &Modbus_RTU_Master::onceReadList,
     READ_FRAME, "12 34 56 78"},
    {"AddListOnceReadVar, unconditionally", queueRead<QUEUE_UNCONDITIONALLY>,
     &Modbus_RTU_Master::onceReadList, READ_FRAME, "12 34 56 78"},
    {"AddListReadVar",
     [](const DriverUnderTest &test, const HostMemory &memory) {
         const RW_VAR record = memory.record(AREA_HOLDING, 10, 2);
         return test.driver.AddListReadVar(&record);
     },
     &Modbus_RTU_Master::readList, READ_FRAME, "12 34 56 78"},
    {"ReCreatReadVarList", rebuild, &Modbus_RTU_Master::readList, READ_FRAME, ""},
};

} // namespace

// An empty text is no null one, but its handle may still point into the host.
TEST(OwnCopies, OfEmptyTextsAndValues)
{
    DriverUnderTest test;
    RW_VAR record;
    record.varKind = AREA_HOLDING;
    record.count = 1;
    record.varName = QStringLiteral("");
    record.value = QByteArrayLiteral("");
    test.driver.AddListReadVar(&record);
    const RW_VAR &kept = test.core.readList.first();
    EXPECT_NE(kept.varName.constData(), record.varName.constData());
    EXPECT_NE(kept.value.constData(), record.value.constData());
    EXPECT_FALSE(kept.varName.isNull() || kept.value.isNull());
    EXPECT_TRUE(kept.addrText.isNull());
}

TEST(OwnCopies, OfWhatAHostUsesAgainAndFrees)
{
    for (const Entry &entry : ENTRIES) {
        SCOPED_TRACE(entry.name);
        DriverUnderTest test;
        HostMemory memory;
        ASSERT_EQ(entry.call(test, memory), 1);
        memory.overwrite();
        const RW_VAR &kept = (test.core.*entry.list).first();
        EXPECT_EQ(kept.varName, "name");
        EXPECT_EQ(kept.addrText, "10");
        EXPECT_EQ(hexFrom(kept.value), entry.value);
        memory.release();
        EXPECT_EQ(test.next(), entry.frame);
        test.answer(QByteArray(), 0); // given up: the record goes to the host
        EXPECT_EQ(test.core.retVar.varName, "name");
        EXPECT_EQ(test.core.retVar.addrText, "10");
    }
}
