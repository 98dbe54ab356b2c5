#include "foundation/ui/prompt.h"

#include "foundation/base/modules.h"
#include "foundation/ui/placement.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QFileDialog>
#include <QInputDialog>
#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>
#include <QPointer>
#include <QScreen>
#include <QTranslator>
#include <QWidget>

namespace tq {

PromptService::~PromptService() = default;

bool PromptService::print(const PaintPages&, const QString&) { return false; }
bool PromptService::printDefault(const PaintPages&, const QString&) { return false; }

bool PromptService::ask(const QString& text, const QString& title)
{
    return message(text, Icon::Question, title, Buttons::YesNo) == Answer::Yes;
}

static QtPromptService& realService()
{
    static QtPromptService s;
    return s;
}

static PromptService* g_service = nullptr;

PromptService& prompts() { return g_service ? *g_service : realService(); }

PromptService* installPrompts(PromptService* service)
{
    PromptService* old = g_service;
    g_service = service;
    return old;
}

// Qt's own dialogs (files, the printer) speak Spanish. Their texts are
// loaded the first time one opens, not at start-up; without Qt's Spanish
// catalogue on the machine they stay as Qt has them.
static void speakSpanish()
{
    static bool done = false;
    if (done)
        return;
    done = true;
    auto* texts = new QTranslator(qApp);
    if (texts->load(QLocale(QLocale::Spanish), QStringLiteral("qtbase"), QStringLiteral("_"),
                    QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(texts);
    else
        delete texts;
}

static QWidget* activeParent()
{
    QWidget* w = QApplication::activeModalWidget();
    if (!w)
        w = QApplication::activeWindow();
    return w;
}

Answer QtPromptService::message(const QString& text, Icon icon, const QString& title,
                                Buttons buttons)
{
    QMessageBox box(activeParent());
    box.setWindowTitle(title);
    box.setText(text);
    switch (icon) {
    case Icon::None: box.setIcon(QMessageBox::NoIcon); break;
    case Icon::Information: box.setIcon(QMessageBox::Information); break;
    case Icon::Exclamation: box.setIcon(QMessageBox::Warning); break;
    case Icon::Critical: box.setIcon(QMessageBox::Critical); break;
    case Icon::Question: box.setIcon(QMessageBox::Question); break;
    }
    switch (buttons) {
    case Buttons::Ok: box.setStandardButtons(QMessageBox::Ok); break;
    case Buttons::OkCancel: box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel); break;
    case Buttons::YesNo: box.setStandardButtons(QMessageBox::Yes | QMessageBox::No); break;
    case Buttons::YesNoCancel:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        break;
    }
    if (QAbstractButton* b = box.button(QMessageBox::Yes))
        b->setText(QStringLiteral("&Sí"));
    if (QAbstractButton* b = box.button(QMessageBox::No))
        b->setText(QStringLiteral("&No"));
    if (QAbstractButton* b = box.button(QMessageBox::Cancel))
        b->setText(QStringLiteral("Cancelar"));
    if (QAbstractButton* b = box.button(QMessageBox::Ok))
        b->setText(QStringLiteral("Aceptar"));
    switch (box.exec()) {
    case QMessageBox::Yes: return Answer::Yes;
    case QMessageBox::No: return Answer::No;
    case QMessageBox::Cancel: return Answer::Cancel;
    default: return buttons == Buttons::Ok ? Answer::Ok
                    : buttons == Buttons::YesNo ? Answer::No : Answer::Cancel;
    }
}

std::optional<QString> QtPromptService::input(const QString& prompt, const QString& title,
                                              const QString& initial)
{
    QInputDialog dlg(activeParent());
    dlg.setWindowTitle(title);
    dlg.setLabelText(prompt);
    dlg.setTextValue(initial);
    dlg.setOkButtonText(QStringLiteral("Aceptar"));
    dlg.setCancelButtonText(QStringLiteral("Cancelar"));
    if (dlg.exec() != QDialog::Accepted)
        return std::nullopt;
    return dlg.textValue();
}

QString QtPromptService::openFile(const QString& caption, const QString& folder,
                                  const QString& filter)
{
    speakSpanish();
    return QFileDialog::getOpenFileName(activeParent(), caption, folder, filter);
}

QString QtPromptService::saveFile(const QString& caption, const QString& proposed,
                                  const QString& filter)
{
    // The store's suffix is added by the caller, so the dialog must not
    // replace or question the name typed.
    speakSpanish();
    return QFileDialog::getSaveFileName(activeParent(), caption, proposed, filter, nullptr,
                                        QFileDialog::DontConfirmOverwrite);
}

namespace {

// The entry point of the print module (foundation/print/printmodule.cpp).
using PrintEntry = bool (*)(QWidget* parent, const QString& title, const PaintPages& paint);
PrintEntry g_printEntry = nullptr;
using PrintDefaultEntry = bool (*)(const QString& title, const PaintPages& paint);
PrintDefaultEntry g_printDefaultEntry = nullptr;

}  // namespace

QString loadPrintModule()
{
    if (g_printEntry)
        return {};
    const QString file = QStringLiteral("libtarvenquil_print.so");
    const auto entry = reinterpret_cast<PrintEntry>(moduleEntry(file, "tarvenquil_print_pages"));
    const auto defaultEntry =
        reinterpret_cast<PrintDefaultEntry>(moduleEntry(file, "tarvenquil_print_default"));
    if (entry && defaultEntry) {
        g_printEntry = entry;
        g_printDefaultEntry = defaultEntry;
        return {};
    }
    return QStringLiteral("No se puede imprimir: no se encontró el módulo de impresión (%1) "
                          "junto al programa.")
        .arg(file);
}

bool QtPromptService::print(const PaintPages& paint, const QString& title)
{
    const QString problem = loadPrintModule();
    if (!problem.isEmpty()) {
        message(problem, Icon::Critical, QString::fromLatin1(kAppTitle), Buttons::Ok);
        return false;
    }
    speakSpanish();
    return g_printEntry(activeParent(), title, paint);
}

bool QtPromptService::printDefault(const PaintPages& paint, const QString& title)
{
    const QString problem = loadPrintModule();
    if (!problem.isEmpty()) {
        message(problem, Icon::Critical, QString::fromLatin1(kAppTitle), Buttons::Ok);
        return false;
    }
    if (g_printDefaultEntry(title, paint))
        return true;
    message(QStringLiteral("No se pudo imprimir: este equipo no tiene una impresora "
                           "predeterminada que responda. Use «Crear PDF» para elegir otra."),
            Icon::Exclamation, QString::fromLatin1(kAppTitle), Buttons::Ok);
    return false;
}

void QtPromptService::showModal(QWidget* screen)
{
    screen->setAttribute(Qt::WA_DeleteOnClose);
    QPointer<QWidget> guard(screen);
    if (auto* dlg = qobject_cast<QDialog*>(screen)) {
        dlg->exec();
        if (guard)
            guard->deleteLater();
        return;
    }
    screen->setWindowModality(Qt::ApplicationModal);
    screen->setWindowFlag(Qt::Window, true);
    placeWindow(screen);
    QEventLoop loop;
    QObject::connect(screen, &QObject::destroyed, &loop, &QEventLoop::quit);
    screen->show();
    if (guard)
        loop.exec();
}

void QtPromptService::endProgram()
{
    QApplication::closeAllWindows();
    QApplication::exit(0);
}

}  // namespace tq
