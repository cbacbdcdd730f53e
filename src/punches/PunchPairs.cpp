#include "punches/PunchPairs.h"

#include <algorithm>

#include "rules/Pairs.h"

namespace qz2::punches {

static_assert(kMaxPairsPerDay == rules::kMaxPairRow,
              "a day of imported pairs must fit the entry form's pairs grid");

namespace {

struct Item {
    QDateTime at;
    Direction direction;
};

bool earlier(const Item& a, const Item& b) {
    if (a.at != b.at) return a.at < b.at;
    return a.direction < b.direction;
}

bool closesNightShift(const QDateTime& in, const QDateTime& out, const PairingOptions& o) {
    return in.time() >= o.nightCheckInFrom && out.date() == in.date().addDays(1) &&
           out.time() < o.nightCheckOutBefore && in.secsTo(out) <= qint64(o.nightMaxMinutes) * 60;
}

class Days {
public:
    explicit Days(const PairingOptions& o) : options_(o) {
        const qint64 n = o.from.daysTo(o.to) + 1;
        days_.resize(n);
        for (qint64 i = 0; i < n; ++i) days_[i].date = o.from.addDays(i);
    }

    PunchDay* day(QDate date) {
        const qint64 i = options_.from.daysTo(date);
        return i >= 0 && i < days_.size() ? &days_[i] : nullptr;
    }

    // A punch put on `date`: flags the day when the punch is after the business date.
    void placed(QDate date, const QDateTime& at) {
        PunchDay* d = day(date);
        if (d && options_.businessDate.isValid() && at.date() > options_.businessDate)
            d->flags |= DayFlag::AfterBusinessDate;
    }

    void addPair(QDate date, const PunchPair& pair) {
        PunchDay* d = day(date);
        if (!d) return;
        if (!pair.out) d->flags |= DayFlag::CheckOutMissing;
        if (d->pairs.size() < kMaxPairsPerDay) {
            d->pairs.append(pair);
        } else {
            d->pairsBeyondSix.append(pair);
            d->flags |= DayFlag::MoreThanSixPairs;
        }
    }

    void addStrayCheckOut(const QDateTime& at) {
        if (PunchDay* d = day(at.date())) {
            d->checkOutsWithoutCheckIn.append(at);
            d->flags |= DayFlag::CheckInMissing;
        }
    }

    void addDuplicate(QDate date) {
        if (PunchDay* d = day(date)) ++d->duplicatesDropped;
    }

    QVector<PunchDay> take() { return std::move(days_); }

private:
    const PairingOptions& options_;
    QVector<PunchDay> days_;
};

}  // namespace

QVector<PunchDay> pairPunches(const QVector<Punch>& punches, const PairingOptions& options) {
    if (!options.from.isValid() || !options.to.isValid() || options.to < options.from) return {};
    const QDate lastNeeded = options.to.addDays(1);  // the last day's night-shift check-out

    QVector<Item> items;
    items.reserve(punches.size());
    for (const Punch& p : punches)
        if (p.at.isValid() && p.at.date() <= lastNeeded) items.append({p.at, p.direction});
    std::sort(items.begin(), items.end(), earlier);
    items.erase(std::unique(items.begin(), items.end(),
                            [](const Item& a, const Item& b) {
                                return a.at == b.at && a.direction == b.direction;
                            }),
                items.end());

    Days days(options);
    const qint64 gapMs = qint64(std::max(0, options.duplicateMinutes)) * 60 * 1000;
    QVector<Item> kept;
    kept.reserve(items.size());
    for (const Item& it : items) {
        if (!kept.isEmpty() && kept.last().at.msecsTo(it.at) < gapMs) {
            days.addDuplicate(it.at.date());
            continue;
        }
        kept.append(it);
    }

    struct Open {
        QDateTime in;
        QDate day;
    };
    std::optional<Open> open;
    auto leaveOpen = [&] {
        days.addPair(open->day, {open->in, std::nullopt});
        open.reset();
    };
    auto close = [&](const QDateTime& at) {
        days.addPair(open->day, {open->in, at});
        days.placed(open->day, at);
        open.reset();
    };
    auto start = [&](const QDateTime& at) {
        open = Open{at, at.date()};
        days.placed(at.date(), at);
    };

    for (const Item& it : kept) {
        if (open && open->day < it.at.date()) {
            if (it.direction != Direction::In && closesNightShift(open->in, it.at, options)) {
                close(it.at);
                continue;
            }
            leaveOpen();
        }
        switch (it.direction) {
            case Direction::In:
                if (open) leaveOpen();
                start(it.at);
                break;
            case Direction::Out:
                if (open) {
                    close(it.at);
                } else {
                    days.addStrayCheckOut(it.at);
                    days.placed(it.at.date(), it.at);
                }
                break;
            case Direction::None:
                if (open)
                    close(it.at);
                else
                    start(it.at);
                break;
        }
    }
    if (open) leaveOpen();
    return days.take();
}

QString dayFlagText(DayFlag flag) {
    switch (flag) {
        case DayFlag::CheckOutMissing:
            return QStringLiteral("check-out missing");
        case DayFlag::CheckInMissing:
            return QStringLiteral("check-in missing");
        case DayFlag::MoreThanSixPairs:
            return QStringLiteral("more than six pairs");
        case DayFlag::AfterBusinessDate:
            return QStringLiteral("after the business date");
    }
    return {};
}

QStringList dayFlagTexts(DayFlags flags) {
    QStringList out;
    for (DayFlag f : {DayFlag::CheckOutMissing, DayFlag::CheckInMissing, DayFlag::MoreThanSixPairs,
                      DayFlag::AfterBusinessDate})
        if (flags.testFlag(f)) out << dayFlagText(f);
    return out;
}

}  // namespace qz2::punches
