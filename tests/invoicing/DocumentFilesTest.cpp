#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QRegularExpression>

#include "app/Session.h"
#include "invoicing/DocumentSettings.h"
#include "invoicing/InvoiceFiles.h"
#include "invoicing/InvoiceRecords.h"
#include "store/FileNames.h"
#include "store/Formats.h"
#include "store/Refusal.h"
#include "support/TestInstall.h"

using namespace orve;
using namespace orve::invoicing;

namespace {

const QString kBatch = QStringLiteral(ORVE_BATCH);
const QString kClubInvoice = "2027000001";
const QString kLeagueInvoice = "2027000003";

QString invoiceFolder(const test::TestInstall& inst) {
    return documentSettings(*inst.start()).invoiceFolder;
}

std::string printedMark(const test::TestInstall& inst, const QString& number) {
    return inst.start()
        ->store()
        .scalar("SELECT ent_fact_edt FROM strentete WHERE ent_fact_no = ?", {number})
        .toString()
        .toStdString();
}

void setPrintedMark(const test::TestInstall& inst, const QString& number, const QString& mark) {
    inst.start()->store().exec("UPDATE strentete SET ent_fact_edt = ? WHERE ent_fact_no = ?",
                               {mark, number});
}

QByteArray contents(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// orve-batch pdf in a child whose files may not grow past `limit` bytes, as
// on a full disk; the write fails with EFBIG instead of killing the child.
int pdfOnFullDisk(const test::TestInstall& inst, const QStringList& numbers, rlim_t limit,
                  QString* out, QString* err) {
    QProcess p;
    auto env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    p.setProcessEnvironment(env);
    p.setChildProcessModifier([limit] {
        const struct rlimit r { limit, limit };
        ::setrlimit(RLIMIT_FSIZE, &r);
        ::signal(SIGXFSZ, SIG_IGN);
    });
    p.start(kBatch, QStringList{"--home", inst.home(), "--as", "gestu", "pdf"} + numbers);
    p.closeWriteChannel();
    p.waitForFinished(120000);
    *out = QString::fromUtf8(p.readAllStandardOutput());
    *err = QString::fromUtf8(p.readAllStandardError());
    return p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
}

// Everything in the folder, files and sub-folders, by name.
std::string folderListing(const QString& folder) {
    return QDir(folder)
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)
        .join(',')
        .toStdString();
}

void age(const QString& path, int seconds) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadWrite));
    f.write("%PDF-1.4 partial");
    f.flush();  // a later write would make it new again
    ASSERT_TRUE(f.setFileTime(QDateTime::currentDateTime().addSecs(-seconds),
                              QFileDevice::FileModificationTime));
}

}  // namespace

TEST(DocumentFiles, FullDiskKeepsThePreviousDocumentAndMarksNothing) {
    test::application();
    test::TestInstall inst;
    const QString folder = invoiceFolder(inst);
    const QString path = QDir(folder).filePath("CL13001_FN_2027000001.pdf");
    QString out, err;
    ASSERT_EQ(
        test::runProgram(kBatch, {"--home", inst.home(), "--as", "gestu", "pdf", kClubInvoice}, {},
                         &out, &err),
        0)
        << qPrintable(err);
    const QByteArray previous = contents(path);
    // Room for the data files' shared memory, not for the whole document.
    const rlim_t limit = 33 * 1024;
    ASSERT_GT(previous.size(), qsizetype(limit) + 512);

    // The older complete document stays, and the invoice is not marked.
    setPrintedMark(inst, kClubInvoice, "N");
    EXPECT_EQ(pdfOnFullDisk(inst, {kClubInvoice}, limit, &out, &err), 1) << qPrintable(out + err);
    EXPECT_TRUE(err.contains("Disque plein")) << qPrintable(err);
    EXPECT_TRUE(err.contains(QDir::toNativeSeparators(path))) << qPrintable(err);
    EXPECT_FALSE(out.contains("document écrit")) << qPrintable(out);
    EXPECT_TRUE(contents(path) == previous);
    EXPECT_EQ(printedMark(inst, kClubInvoice), "N");
    EXPECT_EQ(folderListing(folder), "CL13001_FN_2027000001.pdf");

    // Without an older one, no file at all under the name, nor beside it.
    QFile::remove(path);
    EXPECT_EQ(pdfOnFullDisk(inst, {kClubInvoice}, limit, &out, &err), 1) << qPrintable(out + err);
    EXPECT_TRUE(err.contains("Disque plein : ")) << qPrintable(err);
    EXPECT_TRUE(err.contains("CL13001_FN_2027000001.pdf")) << qPrintable(err);
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(folderListing(folder), "");
    EXPECT_EQ(printedMark(inst, kClubInvoice), "N");
}

TEST(DocumentFiles, TwoRunsAtOnceEachFinishWithWholeDocuments) {
    test::application();
    test::TestInstall inst;
    QStringList numbers;
    {
        auto session = inst.startAs("gestu");
        store::Store& store = session->store();
        store::Transaction tx(store);
        for (int i = 0; i < 20; ++i) {
            InvoiceHeader h;
            h.dateText = format::displayDate(inst.today());
            h.nature = "LIC";
            h.competitionIndex = kLicenceIndex;
            h.competitionTitle = "LICENCES";
            h.billed.account = "CL13001";
            h.billed.name = "Bowling Club Phocéen";
            h.billed.postcodeTown = "13008 Marseille";
            const QString n = createInvoice(store, h, inst.today());
            updateLine(store, n, "01",
                       {"00000001", "Licence adulte", 10 + i, Money::fromCents(4500)});
            for (int l = 0; l < 12; ++l)
                appendLine(store, n,
                           {"00000002", QString("Licence jeune %1").arg(l), 1 + l % 4,
                            Money::fromCents(2200)});
            numbers << n;
        }
        tx.commit();
    }
    QStringList reversed(numbers.rbegin(), numbers.rend());
    const QString folder = invoiceFolder(inst);

    // Each round starts both runs together; their writes of one document overlap.
    for (int round = 0; round < 3; ++round) {
        QProcess a, b;
        for (QProcess* p : {&a, &b}) {
            auto env = QProcessEnvironment::systemEnvironment();
            env.insert("QT_QPA_PLATFORM", "offscreen");
            p->setProcessEnvironment(env);
        }
        a.start(kBatch, QStringList{"--home", inst.home(), "--as", "gestu", "pdf"} + numbers);
        b.start(kBatch, QStringList{"--home", inst.home(), "--as", "gestu", "pdf"} + reversed);
        ASSERT_TRUE(a.waitForFinished(120000));
        ASSERT_TRUE(b.waitForFinished(120000));
        EXPECT_EQ(a.exitCode(), 0) << a.readAllStandardError().constData();
        EXPECT_EQ(b.exitCode(), 0) << b.readAllStandardError().constData();

        const QStringList files = QDir(folder).entryList(QDir::Files | QDir::Hidden);
        EXPECT_EQ(files.size(), 20) << qPrintable(files.join(','));
        for (const QString& n : numbers) {
            const QString pdf = QDir(folder).filePath("CL13001_FN_" + n + ".pdf");
            QString info;
            EXPECT_EQ(test::runProgram("pdfinfo", {pdf}, {}, &info, nullptr), 0) << qPrintable(pdf);
            EXPECT_TRUE(info.contains(QRegularExpression("Pages: +1\\n"))) << qPrintable(info);
            EXPECT_EQ(printedMark(inst, n), "O");
        }
    }
}

TEST(DocumentFiles, PartyCodesNeverChooseTheFolder) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("gestu");
    const DocumentSettings settings = documentSettings(*session);
    const QString folder = QDir(settings.invoiceFolder).absolutePath();
    store::Store& store = session->store();

    // An entity code climbing out of the invoice folder (to the test's own
    // temporary folder, two levels up).
    store.exec("UPDATE strentete SET ent_fact_entite = '../../x' WHERE ent_fact_no = ?",
               {kClubInvoice});
    const QString outside = QDir::cleanPath(QDir(folder).filePath("../../x_FN_2027000001.pdf"));
    const QString escaped = generateInvoicePdf(store, settings, kClubInvoice);
    EXPECT_EQ(QFileInfo(escaped).absoluteFilePath().toStdString(),
              (folder + "/x_FN_2027000001.pdf").toStdString());
    EXPECT_TRUE(QFile::exists(escaped));
    EXPECT_FALSE(QFile::exists(outside)) << qPrintable(outside);

    // An account with a separator makes no sub-folder.
    store.exec(
        "UPDATE strentete SET ent_fact_entite = ' ', ent_tiers_fact = 'CL/13001' WHERE "
        "ent_fact_no = ?",
        {kClubInvoice});
    const QString split = generateInvoicePdf(store, settings, kClubInvoice);
    EXPECT_EQ(QFileInfo(split).absoluteFilePath().toStdString(),
              (folder + "/CL13001_FN_2027000001.pdf").toStdString());
    EXPECT_EQ(folderListing(folder), "CL13001_FN_2027000001.pdf,x_FN_2027000001.pdf");

    // What the name keeps of a code, and what a folder lets in.
    EXPECT_EQ(store::fileNamePart("../../../tmp/x").toStdString(), "tmpx");
    EXPECT_EQ(store::fileNamePart("C:\\Users\\x y*?.pdf").toStdString(), "CUsersxypdf");
    EXPECT_EQ(store::fileNamePart("CD-13_Provence").toStdString(), "CD-13_Provence");
    EXPECT_EQ(store::fileNamePart("Comité d'Azur").toStdString(), "ComitédAzur");
    EXPECT_EQ(store::fileInFolder("/srv/factures", "CD013_FN_00000058.pdf").toStdString(),
              "/srv/factures/CD013_FN_00000058.pdf");
    for (const QString& name : {"", ".", "..", "../x.pdf", "a/b.pdf", "a\\b.pdf", "C:x.pdf"}) {
        try {
            store::fileInFolder("/srv/factures", name);
            ADD_FAILURE() << "accepted: " << qPrintable(name);
        } catch (const Refusal& r) {
            EXPECT_TRUE(r.message().contains("ne désigne pas un fichier du dossier /srv/factures"))
                << qPrintable(r.message());
        }
    }
}

TEST(DocumentFiles, OwnerOnlyAndLeftoversOfKilledRunsRemoved) {
    test::application();
    test::TestInstall inst;
    auto session = inst.startAs("gestu");
    const DocumentSettings settings = documentSettings(*session);
    const QString folder = settings.invoiceFolder;
    QDir().mkpath(folder);
    auto in = [&](const QString& name) { return QDir(folder).filePath(name); };

    // A killed run's temporaries, a run in progress, and files that are not ours.
    age(in("CL13001_FN_2027000099.pdf.Ab12Cd"), 3600);
    age(in("LR06_FN_2027000003.pdf.part"), 3600);
    age(in("CD013_FN_2027000002.pdf.Xy34Zw"), 5);
    age(in("rapport.pdf.Ab12Cd"), 3600);
    age(in("CL13001_FN_2027000001.pdf"), 3600);
    QFile::setPermissions(in("CL13001_FN_2027000001.pdf"),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                              QFileDevice::ReadGroup | QFileDevice::ReadOther);

    // Whatever the umask leaves, and whatever mode the older file had.
    const mode_t before = ::umask(022);
    const QString replaced = generateInvoicePdf(session->store(), settings, kClubInvoice);
    const QString fresh = generateInvoicePdf(session->store(), settings, kLeagueInvoice);
    ::umask(before);
    for (const QString& path : {replaced, fresh}) {
        struct stat st {};
        ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &st), 0);
        EXPECT_EQ(st.st_mode & 0777, 0600u) << qPrintable(path);
    }
    EXPECT_EQ(folderListing(folder),
              "CD013_FN_2027000002.pdf.Xy34Zw,CL13001_FN_2027000001.pdf,LR06_FN_2027000003.pdf,"
              "rapport.pdf.Ab12Cd");
    QString info;
    EXPECT_EQ(test::runProgram("pdfinfo", {replaced}, {}, &info, nullptr), 0);
}
