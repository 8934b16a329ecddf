#pragma once
// What the SMS tests share: traders and statements in a fresh store, a stand-in sending
// program that records how it was started, and the number file read back as CP949.

#include "StoreFixture.h"
#include "common/text/Cp949.h"
#include "links/LinkPaths.h"
#include "links/modSMSLink.h"

#include <QFile>
#include <QTemporaryDir>

namespace nb::test {

struct TraderRow {
    QString code, name, phone, fax, hphone;
};

inline void addTraders(const QList<TraderRow>& traders) {
    for (const TraderRow& t : traders)
        QVERIFY(exec(
            stores().dbBasic,
            QStringLiteral("INSERT INTO Trader (Code, C_Name, Phone, Fax, HPhone) VALUES (?, ?, ?, ?, ?)"),
            {t.code, t.name, t.phone, t.fax, t.hphone}));
}

inline void addStatement(const QString& billNo, const QString& date, const QString& traderCode) {
    QVERIFY(exec(stores().dbBill,
                 QStringLiteral("INSERT INTO Master (BillNo, BillDate, CCode) VALUES (?, ?, ?)"),
                 {billNo, date, traderCode}));
}

// A folder standing for the program's own folder, with (optionally) a stand-in sending program
// that writes its one argument to args.txt and its working folder to cwd.txt.
class SendProgramFolder {
public:
    explicit SendProgramFolder(bool withProgram = true) {
        setProgramFolder(m_own.path());
        if (withProgram) writeStandIn(m_own.path());
    }
    ~SendProgramFolder() { setProgramFolder(QString()); }
    QString path() const { return m_own.path(); }

    static void writeStandIn(const QString& folder) {
        QFile f(folder + QStringLiteral("/HMFlyNote.exe"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("#!/bin/sh\nprintf '%s' \"$1\" > \"$(dirname \"$0\")/args.tmp\"\npwd > \"$(dirname "
                "\"$0\")/cwd.txt\"\n"
                "mv \"$(dirname \"$0\")/args.tmp\" \"$(dirname \"$0\")/args.txt\"\n");
        f.close();
        f.setPermissions(f.permissions() | QFile::ExeOwner | QFile::ExeUser);
    }
    QString argument() const { return readText(QStringLiteral("args.txt")); }
    QString workingFolder() const { return readText(QStringLiteral("cwd.txt")).trimmed(); }
    bool started() const { return QFile::exists(path() + QStringLiteral("/args.txt")); }
    QByteArray numberFile() const {
        QFile f(path() + QStringLiteral("/ExternTelNo.txt"));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

private:
    QString readText(const QString& name) const {
        QFile f(path() + u'/' + name);
        return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
    }
    QTemporaryDir m_own;
};

} // namespace nb::test
