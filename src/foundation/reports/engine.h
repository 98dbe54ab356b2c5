#pragma once
// The report engine: the rows of a run read once, the bands laid out on
// pages, and any page painted on any paged device (the PDF writer, the
// printer) or into a picture for the preview.
#include "foundation/reports/layout.h"

#include <QDateTime>
#include <QFont>
#include <QHash>
#include <QImage>
#include <QPageLayout>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <memory>
#include <vector>

class QPagedPaintDevice;
class QPainter;

namespace tq {
class Recordset;
}

namespace tq::report {

// The laboratory's heading of a report: the texts of its labels by name
// ("laboratorio", "direccion", "rtn") and the logo.
struct Heading {
    QHash<QString, QString> captions;
    QImage logo;
};

// The heading routine: the heading of report `number` (1 to 27) from the
// laboratory's data. 0 gives nothing: the design's texts stay. A store with
// no laboratory row leaves the texts too (only the logo is given); a missing
// logo file gives no picture.
Heading ponerencabezado(int number);

// The logo file the heading reads: logo.jpg of the data folder, where the
// settings screen puts it, else the one beside the program. Empty when
// neither exists.
QString logoFile();

// The recordset a report reads, as its caller left it. A report source that
// is closed is opened (unfiltered); a slot, which its caller opens with its
// own text, stays as it is (closed, it gives no rows).
Recordset& reportRows(const QString& command);

class Document {
public:
    // Reads the rows of `rs` as they stand now (opened, filtered; a closed
    // recordset has none), level by level, and lays the bands out on pages.
    // `rs` itself is not moved. Throws AppError/DbError when the rows can't
    // be read.
    Document(const Layout& layout, const Recordset& rs);
    // A report with no rows: its heading, headers and footers.
    explicit Document(const Layout& layout);
    ~Document();

    const Layout& layout() const { return *m_layout; }

    // Texts set by name over the design's (heading, then the caller's).
    void setCaptions(const QHash<QString, QString>& captions);
    void setLogo(const QImage& logo);

    int pageCount() const { return int(m_pages.size()); }
    int detailRows() const { return m_detailRows; }
    QPageLayout pageLayout() const;
    QSizeF pageSizeMm() const { return m_pageMm; }

    // Page `page` (from 0), the painter's origin at the page's top-left
    // corner, `dotsPerMm` device dots to the millimetre.
    void paintPage(QPainter& painter, int page, double dotsPerMm) const;
    // Every page (or `from` to `to`, inclusive) on a paged device; its page
    // size is set to the report's. False when the device could not be painted.
    bool print(QPagedPaintDevice& device, int from = 0, int to = -1) const;
    // The page as a picture `widthPx` wide, as the preview shows it.
    QImage pageImage(int page, int widthPx) const;
    // The texts of a page, a line per band, for screen readers.
    QString pageText(int page) const;

private:
    struct Plan;
    struct Instance {
        int plan = -1;    // the band's plan
        int level = -1;   // the level whose row it prints (-1: the report's own bands)
        int row = -1;     // that row in the level's rows
        int totals = -1;  // its totals, from here in m_totals
    };
    struct Placed {
        int instance;
        double y;   // millimetres from the page's top
    };
    struct Page {
        int first = 0;   // placed bands, from here in m_placed
        int count = 0;
        int ctxLevel = -1;   // the row the page's own header and footer read
        int ctxRow = -1;
        double headerY = 0;
    };
    struct LevelRows;

    void plan();
    void read(const Recordset& rs);
    void walk(const Recordset& rs, int level, int parentRow);
    int addInstance(int plan, int level, int row);
    void paginate();
    QString itemText(const Instance& inst, int item, int page) const;
    QVariant value(int level, int row, int wantLevel, int slot) const;
    void paintBand(QPainter& p, const Instance& inst, double y, int page, double dpmm) const;

    std::shared_ptr<const Layout> m_keep;
    const Layout* m_layout = nullptr;
    std::vector<Plan> m_plans;
    int m_encabezado = -1, m_pageHeader = -1, m_pageFooter = -1, m_reportFooter = -1;
    std::vector<int> m_headerPlan, m_footerPlan;   // per level
    std::vector<LevelRows> m_levels;
    struct TotalRule;
    std::vector<TotalRule> m_sums;
    std::vector<std::vector<int>> m_sumsOwned;    // per level: sums reset at each row
    std::vector<std::vector<int>> m_sumsTarget;   // per level: sums its rows add to
    std::vector<double> m_acc;
    std::vector<double> m_totals;
    std::vector<Instance> m_body;     // in print order
    Instance m_encInst, m_phInst, m_pfInst;
    std::vector<Placed> m_placed;
    std::vector<Page> m_pages;
    std::vector<QFont> m_fonts;
    QHash<QString, QString> m_captions;
    QImage m_logo;
    QDateTime m_runAt;
    QSizeF m_pageMm;
    int m_detailRows = 0;
    bool m_pageNumberDeclared = false;
};

}  // namespace tq::report
