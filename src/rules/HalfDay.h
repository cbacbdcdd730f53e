#pragma once
// Half-day absences and the allowance/deduction claim of a day: the popup's caption and
// question, the type a mark or unmark gives, the check box's caption and what a tick claims,
// and showing one day's pairs from the mirror.

#include <QDate>
#include <QString>
#include <optional>

#include "rules/DayTypes.h"
#include "rules/Hours.h"
#include "rules/RuleGrids.h"

namespace qz2::rules {

inline const QString kMenuMarkHalfDay = QStringLiteral("&Mark Half Day Absent");
inline const QString kMenuUnmarkHalfDay = QStringLiteral("&Unmark Half Day Absent");

// The popup item's caption for a day type; nullopt when no popup is shown ("H", "L", "A" ...).
std::optional<QString> halfDayMenuCaption(const QString& type);

// The type a confirmed mark or unmark gives: "P" -> "HA", "HL" -> "AL" when marking, "HA" ->
// "P", "AL" -> "HL" when unmarking; nullopt when the type does not change.
std::optional<QString> halfDayToggle(const QString& caption, const QString& type);

// The Yes/No question asked before marking or unmarking the day shown as dateText.
std::optional<QString> halfDayQuestion(const QString& caption, const QString& dateText);

// After Yes: writes the day's new type (when there is one) and recounts the day types.
DayCounts fnMarkHalfDay(FlexGridModel& dayGrid, int row, const QString& caption);

// The check box's caption from a day's AllowanceType: "A" "Allowances", "D" "Deductions",
// anything else "Allowance/Deductions".
QString allowanceCaption(const QString& code);

// What the claim stores for the day: ticked "Allowances" "A", ticked "Deductions" "D", not
// ticked "" (the amount without a kind); nullopt (store nothing) when ticked under the
// neutral caption.
std::optional<QString> claimKind(bool ticked, const QString& caption);

// Every day row of the date gets Hours = amountText and AllowanceType = kind when ticked,
// otherwise empty.
void fnSetDayAllowanceDeduction(FlexGridModel& dayGrid, const QString& amountText,
                                const QString& kind, QDate date, bool ticked);

// Showing day row dayRow: the pairs grid becomes the mirror rows of its date, in mirror order;
// a "P" or "H" day without pairs gets one empty pair numbered 1.
void fnShowDayPairs(FlexGridModel& pairs, const FlexGridModel& mirror, const FlexGridModel& dayGrid,
                    int dayRow);

}  // namespace qz2::rules
