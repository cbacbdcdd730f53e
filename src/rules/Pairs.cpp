#include "rules/Pairs.h"

#include <QHash>

#include "rules/Population.h"

namespace qz2::rules {

namespace {

bool blank(const QString& text) {
    return text.trimmed().isEmpty();
}

QString dateKey(const QString& cellText) {
    if (const auto d = cellDate(cellText)) return TimeValue::fromDate(*d).format(u"yyyymmdd");
    // Unreadable dates still group with their own kind.
    return QLatin1Char('?') + cellText;
}

}  // namespace

void fnRenumberGrid(FlexGridModel& grid) {
    for (int r = 1; r < grid.Rows(); ++r) grid.setTextMatrix(r, paircol::SlNo, QString::number(r));
}

void fnRenumbertheGridForEachDate(FlexGridModel& mirror) {
    QHash<QString, int> next;
    for (int r = 1; r < mirror.Rows(); ++r) {
        int& counter = next[dateKey(mirror.TextMatrix(r, paircol::Date))];
        mirror.setTextMatrix(r, paircol::SlNo, QString::number(++counter));
    }
}

void fnRemoveRowsFromMirrorGridOnEdit(FlexGridModel& mirror, QDate date,
                                      bool mirrorCurrentRowIsHeading) {
    if (mirrorCurrentRowIsHeading) return;
    fnRemoveMirrorRowsOfDate(mirror, date);
}

void fnUpdateMirrorTime(FlexGridModel& mirror, QDate date, int slNo, TimeValue time,
                        TimeKind kind) {
    if (mirror.Rows() < 2 || !date.isValid()) return;
    const QString key = TimeValue::fromDate(date).format(u"yyyymmdd");
    const int col = kind == TimeKind::CheckIn ? paircol::CheckIn : paircol::CheckOut;
    // Every matching row takes the time; there is no early exit.
    for (int r = 1; r < mirror.Rows(); ++r) {
        if (dateKey(mirror.TextMatrix(r, paircol::Date)) != key) continue;
        if (val(mirror.TextMatrix(r, paircol::SlNo)) != slNo) continue;
        mirror.setTextMatrix(r, col, time.format(u"HH:mm"));
    }
}

bool fnAddPairToMirrorGrid(FlexGridModel& mirror, const FlexGridModel& pairs, QDate date, int slNo,
                           int pairsRow) {
    // An empty mirror takes the pair too: a period laid out without any scheduled pair
    // (or an entry stored without times) must still keep the times the clerk types.
    for (int r = 1; r < mirror.Rows(); ++r) {
        if (sameDay(mirror.TextMatrix(r, paircol::Date), date) &&
            val(mirror.TextMatrix(r, paircol::SlNo)) == slNo)
            return false;
    }
    mirror.AddItem({dateText(date), QString::number(slNo),
                    pairs.TextMatrix(pairsRow, paircol::CheckIn),
                    pairs.TextMatrix(pairsRow, paircol::CheckOut)});
    return true;
}

void fnReplaceMirrorRowsForDate(FlexGridModel& mirror, const FlexGridModel& pairs, QDate date) {
    const QString key = TimeValue::fromDate(date).format(u"yyyymmdd");
    int r = 1;
    while (r < mirror.Rows()) {
        if (dateKey(mirror.TextMatrix(r, paircol::Date)) == key)
            mirror.RemoveItem(r);
        else
            ++r;
    }
    for (int p = 1; p < pairs.Rows(); ++p) {
        mirror.AddItem({pairs.TextMatrix(p, paircol::Date), pairs.TextMatrix(p, paircol::SlNo),
                        pairs.TextMatrix(p, paircol::CheckIn),
                        pairs.TextMatrix(p, paircol::CheckOut)});
    }
}

bool fnCheckPreviousCheckOut(TimeValue checkIn, TimeValue previousCheckOut) {
    return checkIn.format(u"HH:mm") < previousCheckOut.format(u"HH:mm");
}

bool sameRowOrderFails(const QString& checkInText, const QString& checkOutText) {
    if (checkInText.isEmpty() || checkOutText.isEmpty()) return false;
    const TimeValue in = cellTime(checkInText).value_or(TimeValue());
    const TimeValue out = cellTime(checkOutText).value_or(TimeValue());
    return in.format(u"HH:mm") > out.format(u"HH:mm");
}

bool pickedTimeIsWritten(QTime picked) {
    return picked.isValid() && picked.hour() + picked.minute() > 0;
}

PairCellCommit fnCommitPairCell(FlexGridModel& pairs, FlexGridModel& mirror, int row, int col,
                                QTime picked) {
    using Outcome = PairCellCommit::Outcome;
    if (row <= 0 || row >= pairs.Rows()) return {Outcome::NotARow, false};

    // A picked 00:00 is never written: an empty cell stays empty.
    if (col > 1 && pickedTimeIsWritten(picked))
        pairs.setTextMatrix(row, col, TimeValue::fromTime(picked).format(u"hh:mm"));

    const auto cell = [&pairs](int r, int c) { return pairs.TextMatrix(r, c); };
    if (sameRowOrderFails(cell(row, paircol::CheckIn), cell(row, paircol::CheckOut)))
        return {Outcome::CheckOutBeforeCheckIn, false};

    const auto date = cellDate(cell(row, paircol::Date));
    const int slNo = static_cast<int>(val(cell(row, paircol::SlNo)));
    if (date && (col == paircol::CheckIn || col == paircol::CheckOut)) {
        // The row is in order now, so both of its times go to the mirror: a time refused
        // earlier by the order check and corrected from the other cell must not stay
        // behind, or the grid would show one pair and the save store another. An empty
        // cell has no time to copy; the mirror keeps what it had.
        for (const int c : {paircol::CheckIn, paircol::CheckOut}) {
            if (const auto time = cellTime(cell(row, c)))
                fnUpdateMirrorTime(mirror, *date, slNo, *time,
                                   c == paircol::CheckIn ? TimeKind::CheckIn : TimeKind::CheckOut);
        }
    }

    // A check-out without a check-in is not kept.
    if (cell(row, paircol::CheckIn).isEmpty()) pairs.setTextMatrix(row, paircol::CheckOut, {});

    // A completed pair joins the mirror, whichever of its cells was finished last (a pair
    // completed by correcting its check-in is as complete as one completed at check-out).
    if (pairs.Rows() > 1 && (col == paircol::CheckIn || col == paircol::CheckOut) && date &&
        !blank(cell(row, paircol::CheckIn)) && !blank(cell(row, paircol::CheckOut)))
        fnAddPairToMirrorGrid(mirror, pairs, *date, slNo, row);

    // Only a check-in is checked, and only against the row directly above.
    if (pairs.Rows() >= 3 && row != 1 && col == paircol::CheckIn &&
        !blank(cell(row, paircol::CheckIn)) && !blank(cell(row - 1, paircol::CheckOut))) {
        const TimeValue in = cellTime(cell(row, paircol::CheckIn)).value_or(TimeValue());
        const TimeValue previous = cellTime(cell(row - 1, paircol::CheckOut)).value_or(TimeValue());
        if (fnCheckPreviousCheckOut(in, previous)) return {Outcome::BeforePreviousCheckOut, false};
    }
    return {Outcome::Committed, true};
}

EnterKeyAction enterKeyAction(EnterSource source, int currentRow, int currentCol, int rows,
                              const QStringList& rowCells) {
    using Kind = EnterKeyAction::Kind;
    EnterKeyAction a;
    a.row = currentRow;
    a.col = currentCol;
    if (currentCol == paircol::CheckOut && currentRow == kMaxPairRow) return a;  // Nothing

    a.tidyUp = true;
    if (currentCol < paircol::CheckOut) {
        a.kind = Kind::MoveRight;
        a.col = currentCol + 1;
        return a;
    }
    if (currentCol == paircol::CheckOut && currentRow != rows - 1) {
        a.kind = Kind::NextRowCol1;
        a.row = currentRow + 1;
        a.col = paircol::SlNo;
        return a;
    }
    a.kind = Kind::Stay;
    if (currentCol != paircol::CheckOut) return a;

    const auto has = [&rowCells](int c) { return !rowCells.value(c).isEmpty(); };
    const bool canAdd = source == EnterSource::Picker
                            ? has(paircol::CheckOut) && has(paircol::CheckIn)
                            : has(paircol::SlNo) && has(paircol::Date);
    if (!canAdd) return a;
    a.kind = Kind::AddRow;
    a.row = currentRow + 1;
    a.col = paircol::SlNo;
    a.date = rowCells.value(paircol::Date);
    a.slNo = QString::number(val(rowCells.value(paircol::SlNo)) + 1, 'g', 15);
    a.sendTabFirst = source == EnterSource::Picker;
    return a;
}

int fnAddPairRow(FlexGridModel& pairs, const EnterKeyAction& action) {
    pairs.setRows(pairs.Rows() + 1);
    const int r = pairs.Rows() - 1;
    pairs.setTextMatrix(r, paircol::Date, action.date);
    pairs.setTextMatrix(r, paircol::SlNo, action.slNo);
    pairs.setTextMatrix(r, paircol::CheckIn, {});
    pairs.setTextMatrix(r, paircol::CheckOut, {});
    return r;
}

bool lastPairRowIsSpare(const FlexGridModel& pairs, int currentRow) {
    const int last = pairs.Rows() - 1;
    return pairs.Rows() > 2 && currentRow != last &&
           blank(pairs.TextMatrix(last, paircol::CheckIn)) &&
           blank(pairs.TextMatrix(last, paircol::CheckOut));
}

bool fnTidyLastPairRow(FlexGridModel& pairs, int currentRow) {
    if (!lastPairRowIsSpare(pairs, currentRow)) return false;
    pairs.setRows(pairs.Rows() - 1);
    return true;
}

void removeBlankTrailingPairRows(FlexGridModel& pairs) {
    while (pairs.Rows() >= 3) {
        const int last = pairs.Rows() - 1;
        if (!blank(pairs.TextMatrix(last, paircol::CheckIn)) ||
            !blank(pairs.TextMatrix(last, paircol::CheckOut)))
            break;
        pairs.setRows(last);
    }
}

bool deletePair(FlexGridModel& pairs, FlexGridModel& mirror, int currentRow, QDate date) {
    bool cleared = false;
    if (pairs.Rows() > 2) {
        pairs.RemoveItem(currentRow);
    } else if (pairs.Rows() == 2) {
        pairs.setTextMatrix(1, paircol::CheckIn, {});
        pairs.setTextMatrix(1, paircol::CheckOut, {});
        cleared = true;
    }
    fnRenumberGrid(pairs);
    fnReplaceMirrorRowsForDate(mirror, pairs, date);
    return cleared;
}

}  // namespace qz2::rules
