// Runs the cases in tests/cases: scripts of calls to a freshly loaded driver, with the expected
// results. tests/cases/README.md describes their language.
#include "tests/driver_under_test.h"
#include "tests/script.h"

#include <QLocale>

namespace
{

QString describe(const RW_VAR &var)
{
    // clang-format off
    return QString("owner=%1 tag=%2 rw=%3 link=%4 area=%5 code=%6 name=%7 text=%8 kind=%9 ")
               .arg(var.ownerId).arg(var.ownerTag).arg(var.rwFlag).arg(var.linkMode)
               .arg(var.areaNo).arg(var.retCode).arg(var.varName, var.addrText).arg(var.varKind)
        + QString("addr=%1 station=%2 count=%3 mark=%4 arg=%5 value=%6")
               .arg(var.addr).arg(var.station).arg(var.count).arg(var.rmwMark).arg(var.remoteArg)
               .arg(QString::fromStdString(hexFrom(var.value)));
    // clang-format on
}

/// "6[0,4) 7[10,42)": area or kind, first address and end of each record.
QString ranges(const QList<RW_VAR> &list)
{
    QStringList texts;
    for (const RW_VAR &record : list)
        texts += QString("%1[%2,%3)")
                     .arg(record.varKind)
                     .arg(record.addr)
                     .arg(record.addr + record.count);
    return texts.isEmpty() ? "none" : texts.join(' ');
}

/// "20+2=01 02 03 04": address, count and value of each record.
QString values(const QList<RW_VAR> &list)
{
    QStringList texts;
    for (const RW_VAR &record : list)
        texts += QString("%1+%2=").arg(record.addr).arg(record.count)
                 + QString::fromStdString(hexFrom(record.value));
    return texts.isEmpty() ? "none" : texts.join(", ");
}

class Runner : public ScriptRunner, DriverUnderTest
{
    const std::map<QString, Action> &actions() const override { return m_actions; }
    const std::map<QString, int *> &numbers() const override { return m_numbers; }

    QList<RW_VAR> &list(const QString &name)
    {
        return name == "write"  ? core.writeList
               : name == "once" ? core.onceReadList
                                : core.readList;
    }

    /// Returns null for the word "null".
    std::unique_ptr<RW_VAR> record(int rwFlag, Words &words) const
    {
        if (words.takeNull())
            return nullptr;
        auto var = std::make_unique<RW_VAR>();
        var->rwFlag = rwFlag;
        var->areaNo = link.localArea;
        var->station = 1;
        var->varKind = words.number();
        var->addrText = words.text();
        var->addr = var->addrText.toInt();
        var->count = words.number();
        var->value = words.bytes();
        setFields(words.fields(), {{"owner", &var->ownerId},
                                   {"tag", &var->ownerTag},
                                   {"rw", &var->rwFlag},
                                   {"link", &var->linkMode},
                                   {"area", &var->areaNo},
                                   {"station", &var->station},
                                   {"mark", &var->rmwMark},
                                   {"arg", &var->remoteArg},
                                   {"code", &var->retCode}});
        return var;
    }

    QString queueOnce(Words &words, int mode)
    {
        m_once = record(REQUEST_READ, words);
        return QString::number(driver.AddListOnceReadVar(m_once.get(), mode));
    }

    QString queueWrite(Words &words, int mode)
    {
        return QString::number(driver.AddListWriteVar(record(REQUEST_WRITE, words).get(), mode));
    }

    QString setValue(Words &words)
    {
        const int kind = words.number();
        const QString text = words.text();
        const int length = words.number();
        int station = 1, owner = 0, tag = 0;
        setFields(words.fields(), {{"station", &station}, {"owner", &owner}, {"tag", &tag}});
        const bool isNull = words.takeNull();
        const QByteArray value = words.bytes();
        return QString::number(driver.SetRegisterData(
            "name", kind, text, station, isNull ? nullptr : &value, length, owner, tag));
    }

    QString getValue(Words &words)
    {
        const int kind = words.number();
        const QString text = words.text();
        const int length = words.number();
        int station = 1;
        setFields(words.fields(), {{"station", &station}});
        QByteArray output("untouched");
        const int known = driver.GetRegisterData(0, kind, text, station,
                                                 words.takeNull() ? nullptr : &output, length);
        return known == 1 ? QString::fromStdString(hexFrom(output)) : "refused " + output;
    }

    QString answerWith(Words &words)
    {
        const bool isNull = words.takeNull();
        const QByteArray reply = words.bytes();
        int length = reply.size();
        setFields(words.fields(), {{"length", &length}});
        const RW_VAR *const verdict = driver.DataCom(isNull ? nullptr : &reply, length);
        EXPECT_EQ(verdict, &core.retVar);
        return QString::number(verdict->retCode);
    }

    /// Answers all frames of one request with good replies. Returns the first frame.
    QString serve()
    {
        QString frame = QString::fromStdString(next());
        for (int i = 0; i < 2 && !core.pendingList.isEmpty(); ++i) {
            m_lastSent = QString::fromStdString(next());
            const bool isRead = core.pendingList.first().dataOffset == 3;
            EXPECT_EQ(answer(isRead ? GOOD_READ : GOOD_WRITE), RESULT_GOOD);
        }
        return frame;
    }

    /// Returns one letter per turn: Write, Once (input area), Cyclic (holding area), or - for none.
    QString turns(int count)
    {
        QString letters;
        for (int i = 0; i < count; ++i) {
            const QString frame = serve();
            const QString function = frame.mid(3, 2);
            letters += frame == "none"    ? '-'
                       : function == "10" ? 'W'
                       : function == "04" ? 'O'
                                          : 'C';
        }
        return letters;
    }

    QString cutGroup(Words &words)
    {
        const bool isNull = words.takeNull();
        const int total = words.number();
        const int maxRegs = words.number();
        RW_VAR var;
        var.varKind = AREA_HOLDING;
        var.addr = 40;
        var.count = 7;
        QList<RW_VAR> pieces;
        driver.WhetherGroup(total, maxRegs, isNull ? nullptr : &var, &pieces);
        if (isNull)
            driver.WhetherGroup(total, maxRegs, &var, nullptr);
        return ranges(pieces) + " last " + ranges({var});
    }

    QString request() const
    {
        if (core.pendingList.isEmpty())
            return "none";
        const Protocol &head = core.pendingList.first();
        return QString("reply=%1 offset=%2 data=%3 ")
                   .arg(head.replyLen)
                   .arg(head.dataOffset)
                   .arg(head.dataLen)
               + describe(head.var);
    }

    void setLink(const QString &which)
    {
        m_another = link;
        driver.SetComInfo(which == "none" ? nullptr : which == "another" ? &m_another : &link);
    }

    QString rebuildWith(Words &words)
    {
        const int length = words.takeNull() ? driver.ReCreatReadVarList(nullptr)
                                            : rebuild(qPrintable(words.rest()));
        return length == core.readList.size() ? ranges(core.readList) : QString::number(length);
    }

    void empty()
    {
        core.readList.clear();
        core.writeList.clear();
        core.onceReadList.clear();
        core.pendingList.clear();
        core.writeBurst = core.onceBurst = 0;
        takeEvents();
    }

    // clang-format off
    const std::map<QString, int *> m_numbers = {
        {"maxRegs", &link.maxRegs}, {"defaultStation", &link.defaultStation},
        {"retryLimit", &link.retryLimit}, {"retryCount", &link.retryCount},
        {"perVarStation", &link.perVarStation}, {"frameTotal", &link.frameTotal},
        {"frameDone", &link.frameDone}, {"remoteMode", &link.remoteMode},
        {"localArea", &link.localArea}, {"commMode", &link.commMode},
        {"cycleDone", &link.cycleDone}, {"reserved0", &link.reserved0},
        {"reserved1", &link.reserved1}, {"hostWord", &link.hostWord},
        {"activeSource", &core.activeSource}, {"writeBurst", &core.writeBurst},
        {"onceBurst", &core.onceBurst}, {"cycleCount", &core.cycleCount},
        {"checkedMode", &m_checkedMode}};

    const std::map<QString, Action> m_actions = {
        {"link", [this](Words &w) { setLink(w.text()); return QString(); }},
        {"locale", [](Words &w) { QLocale::setDefault(QLocale(w.text())); return QString(); }},
        {"unregister", [this](Words &) {
             driver.RegistCallBackFuncIntf(nullptr, nullptr);
             return QString();
         }},
        {"commFailed", [this](Words &) { return QString::number(core.commFailed); }},
        {"fail", [this](Words &) { core.commFailed = 1; return QString(); }},
        {"merging", [this](Words &) { return QString::number(core.pendingMerge.active); }},
        {"empty", [this](Words &) { empty(); return QString(); }},
        {"address", [this](Words &w) {
             const int kind = w.number();
             return QString::number(driver.PLCAddressChangeIntef(kind, w.text()));
         }},
        {"rebuild", [this](Words &w) { return rebuildWith(w); }},
        {"poll", [this](Words &w) {
             return QString::number(driver.AddListReadVar(record(REQUEST_READ, w).get()));
         }},
        {"write", [this](Words &w) { return queueWrite(w, m_checkedMode); }},
        {"append", [this](Words &w) { return queueWrite(w, 1); }},
        {"once", [this](Words &w) { return queueOnce(w, m_checkedMode); }},
        {"appendOnce", [this](Words &w) { return queueOnce(w, 1); }},
        {"converted", [this](Words &) { return ranges({*m_once}); }},
        {"convertedRecord", [this](Words &) { return describe(*m_once); }},
        {"set", [this](Words &w) { return setValue(w); }},
        {"get", [this](Words &w) { return getValue(w); }},
        {"station", [this](Words &w) {
             const int station = w.number();
             driver.EnCommStation(station, w.number());
             return QString();
         }},
        {"next", [this](Words &) { return QString::fromStdString(next()); }},
        {"request", [this](Words &) { return request(); }},
        {"pending", [this](Words &) { return QString::number(core.pendingList.size()); }},
        {"answer", [this](Words &w) { return answerWith(w); }},
        {"silence", [this](Words &) { return QString::number(answer("")); }},
        {"serve", [this](Words &) { return serve(); }},
        {"lastSent", [this](Words &) { return m_lastSent; }},
        {"turns", [this](Words &w) { return turns(w.number()); }},
        {"events", [this](Words &) { return QString::fromStdString(takeEvents()); }},
        {"returned", [this](Words &) { return describe(core.retVar); }},
        {"ranges", [this](Words &w) { return ranges(list(w.text())); }},
        {"values", [this](Words &w) { return values(list(w.text())); }},
        {"record", [this](Words &w) {
             const QList<RW_VAR> &named = list(w.text());
             return describe(named.value(w.number()));
         }},
        {"length", [this](Words &w) { return QString::number(list(w.text()).size()); }},
        {"times", [this](Words &w) {
             const int times = w.number();
             const QString command = w.text();
             QString last;
             for (int i = 0; i < times; ++i)
                 last = run(command, w);
             return last;
         }},
        {"group", [this](Words &w) { return cutGroup(w); }},
        {"imageSize", [this](Words &w) {
             const int area = w.number();
             int station = 1;
             setFields(w.fields(), {{"station", &station}});
             const auto &images = *static_cast<StationImages *>(driver.symbol("DataStorage"));
             return QString::number(images[station][area].size());
         }}};
    // clang-format on

    std::unique_ptr<RW_VAR> m_once;
    QString m_lastSent;
    int m_checkedMode = QUEUE_CHECKED;
    ComInfo m_another;
};

} // namespace

int main(int argc, char *argv[])
{
    testing::InitGoogleTest(&argc, argv);
    return registerScripts("case", [] { return std::make_unique<Runner>(); }) ? RUN_ALL_TESTS() : 1;
}
