#include <gtest/gtest.h>

#include "store/Formats.h"
#include "store/Money.h"

using namespace orve;

TEST(Formats, DatesInTheirThreeForms) {
    const QDate d(2019, 3, 5);
    EXPECT_EQ(format::displayDate(d), "05/03/2019");
    EXPECT_EQ(format::sortDate(d), "20190305");
    EXPECT_EQ(format::monthKey(d), "201903");
    EXPECT_EQ(format::displayToSortKey("05/03/2019"), "20190305");
    EXPECT_EQ(format::displayToSortKey("__/__/____"), "________");
    EXPECT_EQ(*format::parseDisplayDate("5/3/2019"), d);
    EXPECT_FALSE(format::parseDisplayDate("31/02/2019"));
    EXPECT_FALSE(format::parseDisplayDate("__/__/____"));
    EXPECT_FALSE(format::parseDisplayDate("2019-03-05"));
}

TEST(Formats, AmountsAndCounts) {
    EXPECT_EQ(format::amountEuro(Money::fromCents(123456789)), "1 234 567,89 €");
    EXPECT_EQ(format::amountEuro(Money::fromCents(-1250)), "-12,50 €");
    EXPECT_EQ(format::amountEuro(Money::fromCents(5)), "0,05 €");
    EXPECT_EQ(format::amount(Money::fromCents(100000)), "1 000,00");
    EXPECT_EQ(format::amountEuroPlain(Money::fromCents(123456)), "1234,56 €");
    EXPECT_EQ(format::fileAmount(Money::fromCents(-123456)), "-1234,56");
    EXPECT_EQ(format::count(1234567), "1 234 567");
    EXPECT_EQ(format::count(-1000), "-1 000");
    EXPECT_EQ(format::countPlain(1234), "1234");
}

TEST(Formats, PaddingCodesAndValues) {
    EXPECT_EQ(format::zeroPad(58, 8), "00000058");
    EXPECT_EQ(format::zeroPad(2014000123, 8), "2014000123");
    EXPECT_EQ(format::padCode("5", 3), "005");
    EXPECT_EQ(format::padCode(" 98 ", 3), "098");
    EXPECT_EQ(format::padCode("LR06", 2), "LR06");
    EXPECT_EQ(format::padValue("41a", 6), "000041");
    EXPECT_EQ(format::padValue("abc", 6), "000000");
    EXPECT_EQ(format::leadingNumber("2014000123"), 2014000123);
    EXPECT_EQ(format::leadingNumber("  12x"), 12);
}

TEST(Money, ParsesWhatPeopleType) {
    EXPECT_EQ(Money::parse("12,50")->cents(), 1250);
    EXPECT_EQ(Money::parse("12.5")->cents(), 1250);
    EXPECT_EQ(Money::parse("-3")->cents(), -300);
    EXPECT_EQ(Money::parse("1 234,00 €")->cents(), 123400);
    EXPECT_EQ(Money::parse(",5")->cents(), 50);
    EXPECT_FALSE(Money::parse("12,345"));
    EXPECT_FALSE(Money::parse("douze"));
    EXPECT_FALSE(Money::parse(""));
    EXPECT_FALSE(Money::parse("1;DROP"));
    EXPECT_EQ((Money::fromCents(1000) - Money::fromCents(1250)).cents(), -250);
}
