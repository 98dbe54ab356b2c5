#include "foundation/reports/ReportPreview.h"

#include "ui_ReportPreview.h"

#include "foundation/data/amb1.h"
#include "foundation/reports/engine.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/pdffile.h"
#include "foundation/ui/placement.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"

#include <QDir>
#include <QFileInfo>
#include <QPdfWriter>
#include <QPointer>
#include <QSaveFile>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QStandardPaths>
#include <cerrno>
#include <utility>

namespace tq {

namespace {

// A run's rows handed to the preview the registry makes next.
std::shared_ptr<report::Document> g_pending;

// Every declared layout is a screen by its name: its preview.
const bool g_previews = [] {
    ScreenRegistry::instance().addFamily(
        [] { return report::layoutNames(); },
        [](const QString& name, QWidget* parent) -> QWidget* {
            if (g_pending && g_pending->layout().name == name)
                return new ReportPreview(std::exchange(g_pending, nullptr), parent);
            const report::Layout* layout = report::findLayout(name);
            return layout ? new ReportPreview(*layout, parent) : nullptr;
        });
    return true;
}();

QList<QPointer<ReportPreview>>& openPreviews()
{
    static QList<QPointer<ReportPreview>> list;
    return list;
}

// A file name out of a report's title: the characters a folder refuses go.
QString fileNameFor(const report::Layout& l)
{
    QString name = l.title.isEmpty() ? l.name : l.title;
    static const QString refused = QStringLiteral("/\\:*?\"<>|");
    for (QChar& c : name)
        if (refused.contains(c) || c.unicode() < 32)
            c = QLatin1Char('_');
    return name.trimmed() + QStringLiteral(".pdf");
}

}  // namespace

QWidget* makeReportScreen(const QString& name, std::shared_ptr<report::Document> document)
{
    g_pending = std::move(document);
    QWidget* w = nullptr;
    try {
        w = ScreenRegistry::instance().create(name, nullptr);
    } catch (...) {
        g_pending.reset();
        throw;
    }
    g_pending.reset();
    return w;
}

QString writePdf(const report::Document& document, const QString& file)
{
    return writePdfFile(file, [&document](QPagedPaintDevice& device) {
        return document.print(device);
    });
}

ReportPreview::ReportPreview(const report::Layout& layout, QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::ReportPreview>())
{
    std::shared_ptr<report::Document> doc;
    guarded(QStringLiteral("mostrar el informe"), [&] {
        doc = std::make_shared<report::Document>(layout, report::reportRows(layout.command));
    });
    m_doc = doc ? doc : std::make_shared<report::Document>(layout);
    setUp();
}

ReportPreview::ReportPreview(std::shared_ptr<report::Document> document, QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::ReportPreview>()), m_doc(std::move(document))
{
    setUp();
}

ReportPreview::~ReportPreview()
{
    openPreviews().removeAll(QPointer<ReportPreview>(this));
    openPreviews().removeAll(QPointer<ReportPreview>());
}

void ReportPreview::setUp()
{
    ui->setupUi(this);
    const report::Layout& l = m_doc->layout();
    setObjectName(l.name);
    setWindowTitle(l.title.isEmpty() ? l.name : l.title);
    makeListOnly(ui->Zoom);
    openPreviews().append(this);

    onClick(ui->Imprimir, QStringLiteral("imprimir el informe"), [this] { printReport(); });
    onClick(ui->GuardarPDF, QStringLiteral("guardar el informe en PDF"), [this] { savePdf(); });
    onClick(ui->Cerrar, QStringLiteral("cerrar la vista previa"), [this] { close(); });
    onClick(ui->Primera, QStringLiteral("mostrar la primera página"), [this] { showPage(0); });
    onClick(ui->Anterior, QStringLiteral("mostrar la página anterior"),
            [this] { showPage(m_page - 1); });
    onClick(ui->Siguiente, QStringLiteral("mostrar la página siguiente"),
            [this] { showPage(m_page + 1); });
    onClick(ui->Ultima, QStringLiteral("mostrar la última página"),
            [this] { showPage(m_doc->pageCount() - 1); });
    connect(ui->Zoom, &QComboBox::currentIndexChanged, this, [this] {
        guarded(QStringLiteral("cambiar el tamaño de la página"), [this] { render(); });
    });

    auto key = [this](const QKeySequence& seq, const QString& what, std::function<void()> fn) {
        auto* s = new QShortcut(seq, this);
        connect(s, &QShortcut::activated, this, [what, fn] { guarded(what, fn); });
    };
    key(QKeySequence(Qt::Key_PageUp), QStringLiteral("mostrar la página anterior"),
        [this] { showPage(m_page - 1); });
    key(QKeySequence(Qt::Key_PageDown), QStringLiteral("mostrar la página siguiente"),
        [this] { showPage(m_page + 1); });
    key(QKeySequence(Qt::CTRL | Qt::Key_Home), QStringLiteral("mostrar la primera página"),
        [this] { showPage(0); });
    key(QKeySequence(Qt::CTRL | Qt::Key_End), QStringLiteral("mostrar la última página"),
        [this] { showPage(m_doc->pageCount() - 1); });
    key(QKeySequence(Qt::CTRL | Qt::Key_P), QStringLiteral("imprimir el informe"),
        [this] { printReport(); });
    key(QKeySequence(Qt::Key_Escape), QStringLiteral("cerrar la vista previa"), [this] { close(); });

    ui->Hojas->viewport()->installEventFilter(this);
    ui->Hojas->setBackgroundRole(QPalette::Dark);
    ui->Hoja->setAccessibleName(QStringLiteral("Página del informe"));
}

ReportPreview* ReportPreview::find(const QString& name)
{
    for (const QPointer<ReportPreview>& p : std::as_const(openPreviews()))
        if (p && p->objectName() == name && p->isVisible())
            return p;
    return nullptr;
}

void ReportPreview::setRun(int heading, const QHash<QString, QString>& captions)
{
    m_heading = heading;
    m_captions = captions;
    const report::Heading h = report::ponerencabezado(heading);
    QHash<QString, QString> all = h.captions;
    for (auto it = captions.cbegin(); it != captions.cend(); ++it)
        all.insert(it.key(), it.value());
    m_doc->setCaptions(all);
    m_doc->setLogo(h.logo);
    m_renderedPage = -1;
    if (isVisible())
        render();
}

void ReportPreview::setDocument(std::shared_ptr<report::Document> document)
{
    m_doc = std::move(document);
    m_page = std::clamp(m_page, 0, std::max(0, m_doc->pageCount() - 1));
    m_renderedPage = -1;
    if (isVisible())
        render();
}

void ReportPreview::showPage(int page)
{
    page = std::clamp(page, 0, std::max(0, m_doc->pageCount() - 1));
    if (page == m_page && m_renderedPage == page)
        return;
    m_page = page;
    render();
    ui->Hojas->verticalScrollBar()->setValue(0);
}

QSize ReportPreview::sizeHint() const
{
    const QSizeF mm = m_doc->pageSizeMm();
    const QSize bar = ui->barra->sizeHint();
    const QMargins m = layout()->contentsMargins();
    const int spacing = std::max(0, layout()->spacing());
    // Round the page: the scroll bar, the frame and the gap zoomWidth leaves.
    const int around = ui->Hojas->verticalScrollBar()->sizeHint().width()
                       + 2 * ui->Hojas->frameWidth() + 16;
    int pageWidth = int(mm.width() * logicalDpiX() / 25.4);
    const int pageHeight = int(mm.height() * logicalDpiY() / 25.4);
    // At its width, a page is never more than twice the height there is under
    // the bar on the display (less the room of a window's frame).
    if (const QScreen* display = screen(); display && mm.height() > 0) {
        const QMargins frame = windowFrameRoom();
        const int room = display->availableGeometry().height() - frame.top() - frame.bottom()
                         - bar.height() - spacing
                         - m.top() - m.bottom() - around;
        pageWidth = std::min(pageWidth, int(2.0 * room * mm.width() / mm.height()));
    }
    return {std::max(bar.width(), pageWidth + around) + m.left() + m.right(),
            bar.height() + spacing + pageHeight + around + m.top() + m.bottom()};
}

double ReportPreview::zoomWidth() const
{
    const QSizeF mm = m_doc->pageSizeMm();
    const QSize view = ui->Hojas->viewport()->size();
    const double gap = 16;
    switch (ui->Zoom->currentIndex()) {
    case 1:   // the whole page in sight
        return std::max(100.0, std::min(view.width() - gap,
                                        (view.height() - gap) * mm.width() / mm.height()));
    case 2:
        return mm.width() * logicalDpiX() / 25.4;
    case 3:
        return 1.5 * mm.width() * logicalDpiX() / 25.4;
    default:   // the width in sight, but never so wide that less than half the page shows
        return std::max(100.0, std::min(view.width() - gap,
                                        2 * (view.height() - gap) * mm.width() / mm.height()));
    }
}

void ReportPreview::render()
{
    const int pages = m_doc->pageCount();
    m_page = std::clamp(m_page, 0, std::max(0, pages - 1));
    const int width = int(zoomWidth());
    const qreal ratio = devicePixelRatioF();
    QImage page = m_doc->pageImage(m_page, int(width * ratio));
    page.setDevicePixelRatio(ratio);
    ui->Hoja->setPixmap(QPixmap::fromImage(page));
    ui->Hoja->setAccessibleDescription(m_doc->pageText(m_page));
    ui->Pagina->setText(QStringLiteral("Página %1 de %2").arg(m_page + 1).arg(pages));
    ui->Primera->setEnabled(m_page > 0);
    ui->Anterior->setEnabled(m_page > 0);
    ui->Siguiente->setEnabled(m_page + 1 < pages);
    ui->Ultima->setEnabled(m_page + 1 < pages);
    m_renderedWidth = width;
    m_renderedPage = m_page;
}

void ReportPreview::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (m_renderedPage < 0 || m_renderedPage != m_page)
        render();
}

bool ReportPreview::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == ui->Hojas->viewport() && event->type() == QEvent::Resize && isVisible()
        && ui->Zoom->currentIndex() <= 1 && int(zoomWidth()) != m_renderedWidth) {
        guarded(QStringLiteral("mostrar la página"), [this] { render(); });
    }
    return QWidget::eventFilter(watched, event);
}

void ReportPreview::printReport()
{
    const std::shared_ptr<const report::Document> doc = m_doc;
    prompts().print([doc](QPagedPaintDevice& device) { doc->print(device); }, windowTitle());
}

void ReportPreview::savePdf()
{
    const QString file = askPdfFile(fileNameFor(m_doc->layout()));
    if (file.isEmpty())
        return;
    const QString why = writePdf(*m_doc, file);
    if (!why.isEmpty())
        prompts().message(QStringLiteral("No se pudo guardar el informe en el archivo \"%1\": %2.")
                              .arg(QDir::toNativeSeparators(file), why),
                          Icon::Critical);
}

}  // namespace tq
