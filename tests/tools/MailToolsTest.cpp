#include <gtest/gtest.h>

#include "app/Session.h"
#include "invoicing/MailTexts.h"
#include "store/Refusal.h"
#include "support/DemoInvoices.h"
#include "support/TestInstall.h"
#include "tools/DispatchTicks.h"

using namespace orve;
using namespace orve::tools;
using namespace orve::invoicing;

TEST(MailTexts, SavingUnderAnExistingNameReplacesItAndTheDefaultFollowsTheOperator) {
    test::TestInstall inst;
    auto s = inst.startAs("gestu");
    store::Store& store = s->store();
    EXPECT_THROW(saveMailText(store, "  ", "x"), Refusal);
    EXPECT_FALSE(saveMailText(store, "Relance", "Premier texte"));
    // The same name in another case is the same text.
    EXPECT_TRUE(saveMailText(store, "RELANCE", "Texte corrigé\nsur deux lignes"));
    const auto texts = mailTexts(store);
    ASSERT_EQ(texts.size(), 3u);
    EXPECT_EQ(texts[0].name, "avoir");
    EXPECT_EQ(texts[2].name, "RELANCE");
    EXPECT_EQ(findMailText(store, "relance")->body, "Texte corrigé\nsur deux lignes");

    // The first text by name, unless one bears the operator's league.
    EXPECT_EQ(defaultMailText(store, "JKV"), texts[0].body);
    saveMailText(store, "LR06", "Texte de la ligue");
    EXPECT_EQ(defaultMailText(store, "LR06"), "Texte de la ligue");
    store.exec("DELETE FROM strmail");
    EXPECT_EQ(defaultMailText(store, "LR06"), kBuiltInMailText);
}

TEST(DispatchTicks, TicksChangeTheMarksOfTheirListOnlyAfterTheQuestion) {
    test::TestInstall inst;
    auto s = inst.startAs("gestu");
    store::Store& store = s->store();
    clearDispatchList(store);
    loadDispatchList(store);
    const auto numbers = [&](DispatchList l) {
        QStringList out;
        for (const auto& r : store.scratch().select(dispatchQuery(l)))
            out << r.value("ent_fact_no").toString();
        return out;
    };
    EXPECT_EQ(numbers(DispatchList::Unsent),
              (QStringList{test::kClubInvoice, test::kCommitteeInvoice, test::kLeagueInvoice,
                           test::kDemoCreditNote, test::kLongInvoice}));
    EXPECT_EQ(numbers(DispatchList::Sent), QStringList{test::kMarker} + test::kPlayedInvoices);

    // No tick: the change writes nothing.
    EXPECT_EQ(applyDispatchChange(store, DispatchList::Unsent), 0);
    // Any character is a tick; a blank is none; ticks outlive a reading again.
    setDispatchTick(store, test::kClubInvoice, "x");
    setDispatchTick(store, test::kLeagueInvoice, "?");
    setDispatchTick(store, test::kLongInvoice, "X");
    setDispatchTick(store, test::kLongInvoice, " ");
    loadDispatchList(store);
    EXPECT_EQ(tickedForDispatch(store),
              (std::vector<QString>{test::kClubInvoice, test::kLeagueInvoice}));
    EXPECT_EQ(store.scalar("SELECT COUNT(*) FROM strentete WHERE c_edt <> ' '").toInt(), 0);

    EXPECT_EQ(applyDispatchChange(store, DispatchList::Unsent), 2);
    EXPECT_EQ(test::headerValue(store, test::kClubInvoice, "ent_envoi_mail"), "O");
    EXPECT_EQ(test::headerValue(store, test::kLeagueInvoice, "ent_envoi_mail"), "O");
    EXPECT_TRUE(tickedForDispatch(store).empty());
    EXPECT_EQ(numbers(DispatchList::Sent),
              QStringList({test::kMarker, test::kClubInvoice, test::kLeagueInvoice}) +
                  test::kPlayedInvoices);

    setDispatchTick(store, test::kLeagueInvoice, "X");
    EXPECT_EQ(applyDispatchChange(store, DispatchList::Sent), 1);
    EXPECT_EQ(test::headerValue(store, test::kLeagueInvoice, "ent_envoi_mail"), "N");
    EXPECT_EQ(dispatchQuestion(DispatchList::Sent),
              "Etes-vous certain de vouloir renvoyer ces factures par mail ?");
    clearDispatchList(store);
    EXPECT_TRUE(store.scratch().select(dispatchQuery(DispatchList::Sent)).empty());
}
