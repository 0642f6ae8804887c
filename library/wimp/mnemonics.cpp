#include "library/wimp/mnemonics.h"

#include "library/containers/vector.h"

#include <QtCore/QString>
#include <QtGui/QAction>
#include <QtWidgets/QMenu>

namespace {

// What an entry may be chosen by: where its letters stand, the best one first.
vector<qsizetype> ListPlaces(const QString& text)
{
    const qsizetype key = text.indexOf(QLatin1Char('\t'));
    const qsizetype end = key != -1 ? key : text.size();
    const auto isFirst = [&](qsizetype i) { return i == 0 || text[i - 1] == QLatin1Char(' '); };
    vector<qsizetype> places;
    for (const bool first : {true, false})
        for (qsizetype i = 0; i < end; ++i)
            if (text[i].isLetterOrNumber() && isFirst(i) == first)
                places.push_back(i);
    // A sign is better than nothing.
    for (qsizetype i = 0; i < end; ++i)
        if (text[i].isPunct() && text[i] != QLatin1Char('&'))
            places.push_back(i);
    return places;
}

struct TLetters
{
    struct TEntry
    {
        QString Text;
        vector<qsizetype> Places;
        qsizetype Place = -1;
    };

    QChar GetLetter(const TEntry& entry) const { return entry.Text[entry.Place].toUpper(); }
    TEntry* FindOwner(QChar letter)
    {
        for (TEntry& entry : Entries)
            if (entry.Place != -1 && GetLetter(entry) == letter)
                return &entry;
        return nullptr;
    }
    // An entry whose letters are all taken gets one that another can do without.
    bool Give(TEntry& entry, QString& asked)
    {
        for (const qsizetype place : entry.Places)
            if (FindOwner(entry.Text[place].toUpper()) == nullptr) {
                entry.Place = place;
                return true;
            }
        for (const qsizetype place : entry.Places) {
            const QChar letter = entry.Text[place].toUpper();
            if (asked.contains(letter))
                continue;
            asked += letter;
            TEntry* owner = FindOwner(letter);
            const qsizetype before = owner->Place;
            if (Give(*owner, asked)) {
                entry.Place = place;
                return true;
            }
            owner->Place = before;
        }
        return false;
    }

    vector<TEntry> Entries;
};

// Ampersands that are shown stand in pairs, and stay.
QString WithoutMnemonic(const QString& text)
{
    constexpr QLatin1Char mark('&');
    QString plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != mark)
            plain += text[i];
        else if (i + 1 < text.size() && text[i + 1] == mark)
            plain += text.sliced(i++, 2);
    }
    return plain;
}

} // namespace

void AssignMnemonics(QMenu& menu)
{
    TLetters letters;
    for (const QAction* action : menu.actions()) {
        TLetters::TEntry entry;
        if (!action->isSeparator())
            entry.Text = WithoutMnemonic(action->text());
        entry.Places = ListPlaces(entry.Text);
        letters.Entries.push_back(entry);
    }
    for (TLetters::TEntry& entry : letters.Entries) {
        QString asked;
        letters.Give(entry, asked);
    }
    int i = 0;
    for (QAction* action : menu.actions()) {
        TLetters::TEntry& entry = letters.Entries[i++];
        if (entry.Place != -1)
            entry.Text.insert(entry.Place, QLatin1Char('&'));
        if (!action->isSeparator())
            action->setText(entry.Text);
        if (action->menu() != nullptr)
            AssignMnemonics(*action->menu());
    }
}
