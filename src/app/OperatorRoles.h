#pragma once

#include <QString>

// Who an operator is, decided from what sign-in knows of it. What a list
// shows, which paper a document takes and which layout a transfer writes all
// ask here, so that they never disagree about an operator typed "jkv" or
// "cd13": codes compare without regard to case, as everywhere in the program.
namespace orve::app {

// The federation's own code: the league of its operators, and the level that
// owns what belongs to no league.
inline const QString kNationalCode = QStringLiteral("JKV");
// Committee operators' logins, and committees' codes, begin so.
inline const QString kCommitteePrefix = QStringLiteral("CD");

// A national operator's league (or a level) is the federation's code,
// surrounding blanks aside.
bool isNationalCode(const QString& leagueOrLevel);
// A committee operator's login (or a committee's code) begins "CD".
bool isCommitteeCode(const QString& loginOrCode);

}  // namespace orve::app
