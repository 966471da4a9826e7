#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "invoicing/DocumentSettings.h"
#include "shell/DemoSettings.h"
#include "store/Settings.h"

using namespace orve;

TEST(DemoSettings, TheDemoMentionsAreThoseTheDocumentsPrint) {
    QTemporaryDir dir;
    const QString ini = QDir(dir.path()).filePath("orve.ini");
    orve::store::Settings(ini).setValue("federation/nom", "FEDERATION KVARN");
    const invoicing::Letterhead before = invoicing::Letterhead::fromSettings(ini);
    EXPECT_EQ(before.vatMention, "TVA NON APPLICABLE");
    EXPECT_TRUE(before.latePenalties.isEmpty());
    EXPECT_TRUE(before.recoveryFee.isEmpty());

    // The demo's documents carry the mentions a French invoice must: the VAT
    // exemption's article, late penalties and the fixed recovery fee.
    shell::writeDemoMentions(dir.path());
    const invoicing::Letterhead after = invoicing::Letterhead::fromSettings(ini);
    EXPECT_TRUE(after.vatMention.contains("293 B")) << qPrintable(after.vatMention);
    EXPECT_FALSE(after.latePenalties.isEmpty());
    EXPECT_TRUE(after.recoveryFee.contains("40 €")) << qPrintable(after.recoveryFee);
    // The rest of the file is left as it was; the notices keep today's texts.
    EXPECT_EQ(after.name, "FEDERATION KVARN");
    EXPECT_EQ(after.paymentOrder, "Les Règlements sont à effectuer à l'ordre de la K.V.A.R.N.");
    EXPECT_EQ(after.transferNotice, "GAGNEZ DU TEMPS ! Règlez par virement bancaire.");
}
