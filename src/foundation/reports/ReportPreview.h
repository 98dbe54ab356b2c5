#pragma once
// The preview window of a report: its pages one at a time, with page
// navigation, a zoom, "Imprimir" (the printer dialog, all pages), "Guardar
// PDF" and "Cerrar". Every declared layout is a screen of this kind, by the
// layout's name.
#include <QHash>
#include <QImage>
#include <QString>
#include <QWidget>
#include <memory>

namespace Ui {
class ReportPreview;
}

namespace tq::report {
class Document;
struct Layout;
}

namespace tq {

class ReportPreview : public QWidget {
    Q_OBJECT
public:
    // The preview of `layout` over the rows its recordset holds now (a closed
    // recordset is opened first). A failure to read them is told through the
    // error boundary and leaves an empty report.
    explicit ReportPreview(const report::Layout& layout, QWidget* parent = nullptr);
    // The preview of a run already read.
    ReportPreview(std::shared_ptr<report::Document> document, QWidget* parent = nullptr);
    ~ReportPreview() override;

    // The heading texts of report number `heading` (0: the design's) and the
    // captions set by name over them.
    void setRun(int heading, const QHash<QString, QString>& captions);
    // The rows of a new run: the page shown stays where it can.
    void setDocument(std::shared_ptr<report::Document> document);
    const report::Document& document() const { return *m_doc; }

    int currentPage() const { return m_page; }   // from 0
    void showPage(int page);

    // The open preview of that report, if any.
    static ReportPreview* find(const QString& name);

    // Room for a whole page at its own size under the bar of buttons: a
    // preview opens showing the page's width and as much of its height as the
    // screen allows.
    QSize sizeHint() const override;

    // "Imprimir" and "Guardar PDF".
    void printReport();
    void savePdf();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void setUp();
    void render();
    double zoomWidth() const;

    std::unique_ptr<Ui::ReportPreview> ui;
    std::shared_ptr<report::Document> m_doc;
    int m_heading = 0;
    QHash<QString, QString> m_captions;
    int m_page = 0;
    int m_renderedWidth = -1;
    int m_renderedPage = -1;
};

// The screen of report `name` through the registry (a screen registered by
// that name one by one comes first); a preview made there shows `document`,
// the rows already read, instead of reading them again.
QWidget* makeReportScreen(const QString& name, std::shared_ptr<report::Document> document);

// Writes every page of `document` to a PDF file, through a temporary file that
// takes the name only when whole. Returns an empty text when done, otherwise
// why not, in the user's words.
QString writePdf(const report::Document& document, const QString& file);

}  // namespace tq
