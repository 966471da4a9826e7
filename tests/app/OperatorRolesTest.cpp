#include <gtest/gtest.h>

#include "accounting/TransferLayout.h"
#include "app/OperatorRoles.h"
#include "invoicing/DocumentSettings.h"
#include "reference/Visibility.h"

using namespace orve;

// The lists, the documents and the transfer decide who an operator is by the
// same rule: typed in any case, with stray blanks, the codes still count.
TEST(OperatorRoles, EveryLayerKnowsTheNationalAndCommitteeOperatorsInAnyCase) {
    for (const QString national : {"JKV", "jkv", " Jkv "}) {
        EXPECT_TRUE(app::isNationalCode(national));
        EXPECT_TRUE((reference::Viewer{"gestu", national, "D1"}.isNational()));
        EXPECT_EQ((reference::Viewer{"gestu", national, "D1"}.level()), "JKV");
        invoicing::DocumentSettings s;
        s.operatorLeague = national;
        EXPECT_TRUE(s.nationalLetterhead());
        EXPECT_EQ(accounting::transferLayoutOf(national), accounting::TransferLayout::National);
        EXPECT_TRUE(reference::levelMayChange(national, "LR06"));
    }
    for (const QString other : {"LR06", "JKVX", "", "CD13"}) {
        EXPECT_FALSE(app::isNationalCode(other));
        EXPECT_FALSE((reference::Viewer{"ligue06", other, "D1"}.isNational()));
        invoicing::DocumentSettings s;
        s.operatorLeague = other;
        EXPECT_FALSE(s.nationalLetterhead());
        EXPECT_EQ(accounting::transferLayoutOf(other), accounting::TransferLayout::League);
    }

    for (const QString login : {"CD13", "cd13", "Cd13"}) {
        EXPECT_TRUE(app::isCommitteeCode(login));
        const reference::Viewer committee{login, "13", "D1"};
        EXPECT_TRUE(committee.isCommitteeUser());
        EXPECT_EQ(committee.level(), "CD013");
        invoicing::DocumentSettings s;
        s.operatorLogin = login;
        EXPECT_TRUE(s.committeeOperator());
    }
    for (const QString login : {"ligue06", "gestu", "ACD13", ""}) {
        EXPECT_FALSE(app::isCommitteeCode(login));
        EXPECT_FALSE((reference::Viewer{login, "LR06", "D1"}.isCommitteeUser()));
        invoicing::DocumentSettings s;
        s.operatorLogin = login;
        s.operatorLeague = "LR06";
        EXPECT_FALSE(s.committeeOperator());
    }
}
