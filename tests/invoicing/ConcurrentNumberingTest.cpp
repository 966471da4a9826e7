#include <gtest/gtest.h>

#include <QProcess>
#include <QRegularExpression>
#include <memory>
#include <set>
#include <vector>

#include "invoicing/InvoiceRecords.h"
#include "support/TestInstall.h"

using namespace orve;

namespace {

const QString kBatch = QStringLiteral(ORVE_BATCH);

qint64 highestNumber(store::Store& s) {
    return s.scalar("SELECT MAX(CAST(ent_fact_no AS INTEGER)) FROM strentete").toLongLong();
}

}  // namespace

TEST(ConcurrentNumbering, FourWorkstationsAtOnceNeitherRepeatNorSkipANumber) {
    test::TestInstall inst;
    qint64 before = 0;
    {
        auto session = inst.start();
        before = highestNumber(session->store());
    }
    constexpr int kWorkstations = 4;
    constexpr int kEach = 15;

    auto env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    env.insert("ORVE_TODAY", "21/11/2026");
    std::vector<std::unique_ptr<QProcess>> runs;
    for (int i = 0; i < kWorkstations; ++i) {
        auto p = std::make_unique<QProcess>();
        p->setProcessEnvironment(env);
        // Two operators of two levels, whose sign-ins write too.
        QStringList args{"--home", inst.home(), "--as", i % 2 == 0 ? "gestu" : "ligue06"};
        args << "factures-essai" << QString::number(kEach);
        p->start(kBatch, args);
        runs.push_back(std::move(p));
    }
    int reported = 0;
    for (auto& p : runs) {
        ASSERT_TRUE(p->waitForFinished(180000));
        const QString out = QString::fromUtf8(p->readAllStandardOutput());
        const QString err = QString::fromUtf8(p->readAllStandardError());
        EXPECT_EQ(p->exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(p->exitCode(), 0) << err.toStdString();
        const auto m =
            QRegularExpression(QStringLiteral("^(\\d+) facture\\(s\\) d'essai créée\\(s\\)"
                                              ".* la plus lente : \\d+ ms"))
                .match(out);
        EXPECT_TRUE(m.hasMatch()) << out.toStdString();
        reported += m.captured(1).toInt();
    }
    EXPECT_EQ(reported, kWorkstations * kEach);

    auto session = inst.start();
    store::Store& s = session->store();
    const auto rows = s.select(
        "SELECT ent_fact_no FROM strentete WHERE CAST(ent_fact_no AS INTEGER) > ? "
        "ORDER BY CAST(ent_fact_no AS INTEGER)",
        {before});
    ASSERT_EQ(static_cast<int>(rows.size()), kWorkstations * kEach);
    // Duplicates by value ("0042" and "42") count as duplicates too.
    EXPECT_EQ(
        s.scalar("SELECT count(DISTINCT CAST(ent_fact_no AS INTEGER)) FROM strentete").toLongLong(),
        s.scalar("SELECT count(*) FROM strentete").toLongLong());
    std::set<QString> billed;
    for (size_t i = 0; i < rows.size(); ++i) {
        const QString number = rows[i].value(0).toString();
        EXPECT_EQ(number.toLongLong(), before + 1 + static_cast<qint64>(i))
            << "gap or repeat after " << before + static_cast<qint64>(i);
        const auto lines = invoicing::readLines(s, number);
        ASSERT_EQ(lines.size(), 3u) << number.toStdString();
        for (const auto& l : lines) {
            EXPECT_NE(l.text, invoicing::kUndefinedText) << number.toStdString();
            EXPECT_GT(l.amount.cents(), 0) << number.toStdString();
        }
        const auto header = s.selectOne(
            "SELECT ent_fact_type, ent_tiers_fact FROM strentete WHERE ent_fact_no = ?", {number});
        ASSERT_TRUE(header);
        EXPECT_EQ(header->value(0).toString(), invoicing::kInvoiceType) << number.toStdString();
        billed.insert(header->value(1).toString());
    }
    // A real party of the installation, the same for every workstation.
    ASSERT_EQ(billed.size(), 1u);
    EXPECT_TRUE(s.exists("SELECT 1 FROM strclub WHERE club_code = ?", {*billed.begin()}));

    // A count that is no count writes nothing.
    QString out, err;
    EXPECT_EQ(test::runProgram(kBatch,
                               {"--home", inst.home(), "--as", "gestu", "factures-essai", "douze"},
                               "", &out, &err),
              1);
    EXPECT_TRUE(err.contains("n'est pas valide")) << err.toStdString();
    EXPECT_EQ(highestNumber(s), before + kWorkstations * kEach);
}
