// SPDX-License-Identifier: MIT
// A host that edits the cache from inside its callback, at each place of a run. It may not, and the
// driver follows the list as it then is, register by register.
#include "cycle_fixture.h"

namespace {

constexpr int registers = 12;
constexpr int first = 26;

enum class Edit { Rename, InsertBefore, InsertBehind, Remove, KeepCopy, KeepCopyAndRename };

/// What happens to which register's record while another one's change is reported.
struct Case {
    Edit edit;
    int reported; ///< offsets in the run
    int edited;
};

std::vector<Case> allCases()
{
    std::vector<Case> cases;
    for (const Edit edit : { Edit::Rename, Edit::InsertBefore, Edit::InsertBehind, Edit::Remove,
                             Edit::KeepCopy, Edit::KeepCopyAndRename }) {
        for (int reported = 0; reported < registers; ++reported) {
            for (int edited = 0; edited < registers; ++edited)
                cases.push_back({ edit, reported, edited });
        }
    }
    return cases;
}

int positionOf(const QList<_DATA_> &list, int address)
{
    for (int i = 0; i < list.size(); ++i) {
        const _DATA_ &record = list.at(i);
        if (record.station == 1 && record.regType == QLatin1String("D")
            && record.address == address)
            return i;
    }
    return -1;
}

/// Edits a list of records; the same way in the driver and in what is expected of it.
void apply(const Case &step, QList<_DATA_> &list, QList<_DATA_> &kept)
{
    const int position = positionOf(list, first + step.edited);
    _DATA_ other;
    other.station = 9;
    other.regType = QStringLiteral("F");
    switch (step.edit) {
    case Edit::KeepCopyAndRename:
        kept = list;
        list[position].address = 700;
        return;
    case Edit::Rename:
        list[position].address = 700;
        return;
    case Edit::InsertBefore:
        list.insert(position, other);
        return;
    case Edit::InsertBehind:
        list.insert(position + 1, other);
        return;
    case Edit::Remove:
        list.removeAt(position);
        return;
    case Edit::KeepCopy:
        kept = list;
        return;
    }
}

std::string contents(const QList<_DATA_> &list)
{
    std::string text;
    for (const _DATA_ &record : list) {
        text += std::to_string(record.station) + ' ' + record.regType.toStdString() + ' '
            + std::to_string(record.address) + '=' + std::to_string(record.value[0]) + ','
            + std::to_string(record.writePending ? record.writeValue[0] : 0) + ' ';
    }
    return text;
}

/// What the rules say, word by word: look for the record from the beginning of the list, append it
/// if there is none, store, report.
struct Expected {
    QList<_DATA_> list;
    QList<_DATA_> kept;
    std::vector<std::string> calls;

    int find(int address)
    {
        const int position = positionOf(list, address);
        if (position >= 0)
            return position;
        _DATA_ record;
        record.station = 1;
        record.regType = QStringLiteral("D");
        record.address = address;
        list.append(record);
        return static_cast<int>(list.size()) - 1;
    }

    void report(const Case &step, int offset, bool isMonitored)
    {
        if (!isMonitored)
            return;
        calls.push_back("1 1 D " + std::to_string(first + offset));
        if (offset == step.reported)
            apply(step, list, kept);
    }
};

class CallbackEdits : public CycleFixture {
protected:
    void prepare()
    {
        init("1#0#0#3#20");
        merge({ keyAddress(1, "D", first, registers) });
        calls.clear();
        expected = Expected();
        for (const _DATA_ &record : std::as_const(state.dataAreas))
            expected.list.append(record);
    }

    void editWhen(const Case &step)
    {
        kept.clear();
        insideCallback = [this, step](int, int, const QString &, int address) {
            if (address == first + step.reported)
                apply(step, state.dataAreas, kept);
        };
    }

    void compare(const Case &step)
    {
        const std::string where = "edit " + std::to_string(static_cast<int>(step.edit)) + " of "
            + std::to_string(step.edited) + " while " + std::to_string(step.reported)
            + " is reported";
        ASSERT_EQ(contents(state.dataAreas), contents(expected.list)) << where;
        ASSERT_EQ(calls, expected.calls) << where;
        ASSERT_EQ(contents(kept), contents(expected.kept)) << where;
    }

    Expected expected;
    QList<_DATA_> kept;
};

} // namespace

TEST_F(CallbackEdits, AreFollowedByTheRestOfAReply)
{
    for (const Case &step : allCases()) {
        prepare();
        std::vector<int> values;
        for (int i = 0; i < registers; ++i) {
            const int position = expected.find(first + i);
            expected.list[position].value[0] = static_cast<unsigned char>(i + 1);
            expected.report(step, i, expected.list.at(position).flags == 1);
            values.push_back(i + 1);
        }
        editWhen(step);
        nextFrame();

        answer(values);

        compare(step);
    }
}

TEST_F(CallbackEdits, AreFollowedByTheRestOfAWrite)
{
    for (const Case &step : allCases()) {
        prepare();
        std::vector<int> values;
        for (int i = 0; i < registers; ++i) {
            expected.report(step, i, expected.list.at(expected.find(first + i)).flags == 1);
            _DATA_ &record = expected.list[expected.find(first + i)];
            record.writeValue[0] = static_cast<unsigned char>(i + 1);
            record.writePending = 1;
            values.push_back(i + 1);
        }
        editWhen(step);

        set(1, "D", first, values);

        compare(step);
    }
}

TEST_F(CallbackEdits, AreFollowedByTheCallsBehindThem)
{
    for (const Case &step : allCases()) {
        prepare();
        editWhen(step);
        nextFrame();
        answer(std::vector<int>(registers, 7));
        insideCallback = nullptr;
        expected.list = state.dataAreas;
        std::string values;
        for (int i = 0; i < registers; ++i)
            values +=
                expected.list.at(expected.find(first + i)).value[0] == 7 ? "07 00 " : "00 00 ";

        const std::string shown = data(1, "D", first, registers);

        ASSERT_EQ(shown + ' ', values);
        ASSERT_EQ(contents(state.dataAreas), contents(expected.list));
    }
}
