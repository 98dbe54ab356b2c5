#pragma once
// A user who does anything at all, reproducibly: one seed, the same clicks, keys and answers.
#include "testsupport.h"

#include <QList>
#include <QStringList>
#include <functional>
#include <random>

class QWidget;

namespace tq::test {

// The source of every choice of a run.
class Dice {
public:
    explicit Dice(quint32 seed) : m_gen(seed) {}
    int below(int n) { return n <= 0 ? 0 : int(m_gen() % quint32(n)); }
    bool chance(int percent) { return below(100) < percent; }
    template <typename T>
    T pick(const QList<T>& list) { return list.at(below(int(list.size()))); }

private:
    std::mt19937 m_gen;
};

// What users type that programs get wrong: quotes, SQL, 10,000 characters,
// "ñ", emoji, numbers out of every range, fractions, blanks and nothing.
const QStringList& nastyTexts();

// Answers every prompt and file or printer dialog at random, recording it as
// the scripted service does. A modal screen gets a few events of its own
// through `onModal` (two modal screens deep at most) and is then closed.
class RandomPrompts : public ScriptedPrompts {
public:
    RandomPrompts(Dice& dice, const QString& folder);   // files offered live in `folder`

    QStringList boundaryMessages;   // the failures the error boundary showed
    std::function<void(QWidget*)> onModal;

    Answer message(const QString& text, Icon icon, const QString& title, Buttons buttons) override;
    std::optional<QString> input(const QString& prompt, const QString& title, const QString& initial) override;
    QString openFile(const QString& caption, const QString& folder, const QString& filter) override;
    QString saveFile(const QString& caption, const QString& proposed, const QString& filter) override;
    bool print(const tq::PaintPages& paint, const QString& title) override;
    bool printDefault(const tq::PaintPages& paint, const QString& title) override;
    void showModal(QWidget* screen) override;

private:
    Dice& m_dice;
    QStringList m_openAnswers, m_saveAnswers;
    int m_boundarySeen = 0;
    int m_depth = 0;
};

// Does one random thing to a window: clicks a button, menu entry or grid
// cell, types a nasty text, presses a key, moves a combo or a tab, lets a
// timer tick, closes the window. `announce` is told each event just before
// it happens, so that a crash still names it.
class RandomUser {
public:
    explicit RandomUser(Dice& dice) : m_dice(dice) {}
    void act(QWidget* window);
    std::function<void(const QString&)> announce;

private:
    void say(const QString& what) const { if (announce) announce(what); }
    Dice& m_dice;
};

}  // namespace tq::test
