#pragma once
// The one channel to the user. Every message box, question, input box, file
// dialog, modal screen and the end of the program goes through the installed
// PromptService. The program installs QtPromptService; tests install a
// scripted twin that records each prompt and answers from a script.
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

class QPagedPaintDevice;
class QWidget;

namespace tq {

enum class Icon { None, Information, Exclamation, Critical, Question };
enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel };
enum class Answer { Ok, Cancel, Yes, No };

// What a print job draws once a printer has been chosen: every page on the
// device, each after the first begun with device.newPage().
using PaintPages = std::function<void(QPagedPaintDevice& device)>;

// Default title of message boxes, the program's own name.
inline constexpr const char* kAppTitle = "Tarvenquil";

class PromptService {
public:
    virtual ~PromptService();

    // A message box. Returns the button pressed (Ok for a plain box).
    virtual Answer message(const QString& text, Icon icon = Icon::None,
                           const QString& title = QString::fromLatin1(kAppTitle),
                           Buttons buttons = Buttons::Ok) = 0;

    // An input box; nullopt when cancelled.
    virtual std::optional<QString> input(const QString& prompt,
                                         const QString& title = QString::fromLatin1(kAppTitle),
                                         const QString& initial = {}) = 0;

    // File dialogs; an empty text when cancelled.
    virtual QString openFile(const QString& caption, const QString& folder,
                             const QString& filter) = 0;
    virtual QString saveFile(const QString& caption, const QString& proposed,
                             const QString& filter) = 0;

    // The printer dialog, then the pages on the printer chosen; false when
    // cancelled or when nothing could be printed (the user has been told
    // why). A service that shows no printer dialog answers as the user who
    // cancels: nothing is printed.
    virtual bool print(const PaintPages& paint,
                       const QString& title = QString::fromLatin1(kAppTitle));
    // The pages on the default printer, without a dialog; false when there is
    // no printer or nothing could be printed (the user has been told why).
    virtual bool printDefault(const PaintPages& paint,
                              const QString& title = QString::fromLatin1(kAppTitle));

    // Shows a screen modally and returns when it has closed. The screen is
    // deleted on close (Qt::WA_DeleteOnClose is set by the service).
    virtual void showModal(QWidget* screen) = 0;

    // Ends the program (the last window closed, or a refused sign-on).
    virtual void endProgram() = 0;

    // Convenience: a Yes/No question.
    bool ask(const QString& text, const QString& title = QString::fromLatin1(kAppTitle));
};

// Printing lives in a module of its own, loaded the first time something is
// printed, so that the printing libraries cost nothing at start-up. Returns
// an empty text when the module is loaded, or why it could not be.
QString loadPrintModule();

PromptService& prompts();
// Installs a service (not owned) and returns the previous one.
PromptService* installPrompts(PromptService* service);

// The real service, on Qt's dialogs.
class QtPromptService : public PromptService {
public:
    Answer message(const QString& text, Icon icon, const QString& title, Buttons buttons) override;
    std::optional<QString> input(const QString& prompt, const QString& title,
                                 const QString& initial) override;
    QString openFile(const QString& caption, const QString& folder, const QString& filter) override;
    QString saveFile(const QString& caption, const QString& proposed, const QString& filter) override;
    bool print(const PaintPages& paint, const QString& title) override;
    bool printDefault(const PaintPages& paint, const QString& title) override;
    void showModal(QWidget* screen) override;
    void endProgram() override;
};

}  // namespace tq
