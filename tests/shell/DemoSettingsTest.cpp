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

    shell::writeDemoMentions(dir.path());
    const invoicing::Letterhead after = invoicing::Letterhead::fromSettings(ini);
    EXPECT_EQ(after.vatMention, "TVA non applicable, art. 293 B du CGI");
    EXPECT_EQ(after.latePenalties, "Pénalités de retard : trois fois le taux d'intérêt légal");
    EXPECT_EQ(after.recoveryFee, "Indemnité forfaitaire pour frais de recouvrement : 40 €");
    // The rest of the file is left as it was; the notices keep today's texts.
    EXPECT_EQ(after.name, "FEDERATION KVARN");
    EXPECT_EQ(after.paymentOrder, "Les Règlements sont à effectuer à l'ordre de la K.V.A.R.N.");
    EXPECT_EQ(after.transferNotice, "GAGNEZ DU TEMPS ! Règlez par virement bancaire.");
}
