#pragma once
// A user who does anything at all, reproducibly: the same seed gives the same
// clicks, keys and answers. RandomPrompts answers every prompt at random;
// RandomUser acts on a window one event at a time.
#include "testsupport.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <random>

class QWidget;

namespace tq::test {

// The source of every choice of a run.
class Dice {
public:
    explicit Dice(quint32 seed) : m_gen(seed) {}
    // 0 .. n-1 (0 when n is 0).
    int below(int n) { return n <= 0 ? 0 : int(m_gen() % quint32(n)); }
    bool chance(int percent) { return below(100) < percent; }
    template <typename T>
    T pick(const QList<T>& list) { return list.at(below(int(list.size()))); }

private:
    std::mt19937 m_gen;
};

// What users type that programs get wrong: quotes, SQL, a text of 10,000
// characters, accents and "ñ", emoji, numbers out of every range, fractions,
// blanks and nothing at all.
const QStringList& nastyTexts();

// Answers every question, input box, file and printer dialog at random and
// records each prompt. A modal screen gets a few events of its own through
// `onModal` (at most `maxDepth` modal screens deep) and is then closed. The
// end of the program is recorded, never carried out.
class RandomPrompts : public PromptService {
public:
    // Installs itself; files offered to the dialogs live in `folder`.
    RandomPrompts(Dice& dice, const QString& folder);
    ~RandomPrompts() override;

    QList<Prompt> prompts;
    // Texts of the failures the error boundary showed through this service.
    QStringList boundaryMessages;
    int ends = 0;
    std::function<void(QWidget*)> onModal;
    int maxDepth = 2;

    Answer message(const QString& text, Icon icon, const QString& title, Buttons buttons) override;
    std::optional<QString> input(const QString& prompt, const QString& title,
                                 const QString& initial) override;
    QString openFile(const QString& caption, const QString& folder, const QString& filter) override;
    QString saveFile(const QString& caption, const QString& proposed, const QString& filter) override;
    bool choosePrinter(QPrinter* printer, const QString& title) override;
    void showModal(QWidget* screen) override;
    void endProgram() override;

private:
    Dice& m_dice;
    PromptService* m_previous = nullptr;
    QStringList m_openAnswers;
    QStringList m_saveAnswers;
    int m_boundarySeen = 0;
    int m_depth = 0;
};

// Does one random thing to a window and what it holds: clicks an enabled
// button, option or check, a menu entry or a grid cell; types a nasty text
// or presses a key (Enter, Tab, Escape, Backspace, digits...) in a field or
// grid; moves a combo; lets a timer tick.
class RandomUser {
public:
    explicit RandomUser(Dice& dice) : m_dice(dice) {}
    // Returns what it did, in words, for whoever replays the run.
    QString act(QWidget* window);
    // Told what is about to happen, just before it happens (a crash then
    // still names the event).
    std::function<void(const QString&)> announce;

private:
    void say(const QString& what) const;
    QString press(QWidget* w, Qt::Key key, const QString& what) const;
    Dice& m_dice;
};

}  // namespace tq::test
