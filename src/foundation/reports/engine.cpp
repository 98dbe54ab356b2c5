// The report engine. A run reads the rows of its recordset once, level by
// level, into a snapshot of the columns the layout prints, adding the totals
// as it goes; the bands are then laid out on pages by their heights alone, so
// that any page can be painted on its own (the preview's first page costs
// one page, not the report).
#include "foundation/reports/engine.h"

#include <QHash>
#include <algorithm>

#include "foundation/base/apperror.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/data/datafolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPdfWriter>
#include <cmath>

namespace tq::report {

// ---------------------------------------------------------------- heading

QString logoFile()
{
    const QString inData = dataFolder().isEmpty() ? QString() : logoPath();
    if (!inData.isEmpty() && QFileInfo::exists(inData))
        return inData;
    const QString beside = QDir(QCoreApplication::applicationDirPath())
                               .filePath(QStringLiteral("logo.jpg"));
    return QFileInfo::exists(beside) ? beside : QString();
}

namespace {

// The logo is read once, and again only when its file changes.
QImage logoImage()
{
    static QString s_file;
    static QDateTime s_stamp;
    static qint64 s_size = -1;
    static QImage s_image;
    const QString file = logoFile();
    if (file.isEmpty())
        return {};
    const QFileInfo info(file);
    if (file != s_file || info.lastModified() != s_stamp || info.size() != s_size) {
        s_image = QImage(file);   // a file that is not a picture gives none
        s_file = file;
        s_stamp = info.lastModified();
        s_size = info.size();
    }
    return s_image;
}

}  // namespace

Heading ponerencabezado(int number)
{
    Heading h;
    if (number == 0)
        return h;
    h.logo = logoImage();
    Recordset datos;
    datos.open(QStringLiteral("select * from Datos"));
    if (datos.recordCount() == 0)
        return h;
    datos.moveFirst();
    const QString direccion = datos.text(QStringLiteral("direccion_lab"));
    const QString telefono = datos.text(QStringLiteral("telefono_lab"));
    const QString fax = datos.text(QStringLiteral("fax_lab"));
    const QString rtn = datos.text(QStringLiteral("rtn_lab"));
    h.captions.insert(QStringLiteral("laboratorio"), datos.text(QStringLiteral("nombre_lab")));
    if (number == 26) {
        QString d = direccion + QStringLiteral(" telefono: ") + telefono;
        if (!fax.isEmpty())
            d += QStringLiteral(" fax: ") + fax;
        d += QStringLiteral(" email: ") + datos.text(QStringLiteral("correo_lab"));
        h.captions.insert(QStringLiteral("direccion"), d);
        h.captions.insert(QStringLiteral("rtn"), QStringLiteral("RTN: ") + rtn);
        return h;
    }
    h.captions.insert(QStringLiteral("direccion"),
                      direccion + QStringLiteral(" telefono: ") + telefono
                          + QStringLiteral(" fax: ") + fax);
    if (number != 19)   // the letterhead carries no rtn
        h.captions.insert(QStringLiteral("rtn"), rtn);
    return h;
}

Recordset& reportRows(const QString& command)
{
    Recordset& rs = amb1().rs(command);
    const CommandDef* def = rs.command();
    if (!rs.isOpen() && def && def->kind != CommandKind::Slot)
        rs.open();
    return rs;
}

// ---------------------------------------------------------------- plans

// How one item of a band is printed in this run.
struct ItemPlan {
    const Item* item = nullptr;
    int font = 0;
    int level = -1;   // Field: the level it reads
    int slot = -1;    // Field: the column within that level's snapshot
    int total = -1;   // Total: its place among the band's totals
    QString text;     // Caption (or a text set by name): what it prints
    bool named = false;   // set by name over the design
};

struct Document::Plan {
    const Band* band = nullptr;
    int level = -1;   // the level whose rows it repeats with; -1 the report's own
    std::vector<ItemPlan> items;
    std::vector<int> sums;   // its totals, in item order
    bool keepWithNext = false;
};

struct Document::TotalRule {
    int owner = -1;    // the level whose rows reset it; -1 never (the whole report)
    int target = 0;    // the level whose rows it adds up
    int slot = -1;     // the column, in the target's snapshot
    bool money = false;
    bool count = false;
};

// The rows of one level: the printed columns of each row, its parent above
// and its children below (contiguous, since rows are read depth first).
struct Document::LevelRows {
    QStringList columns;          // the layout's names, in slot order
    QVector<int> sourceColumn;    // their place in the recordset; -1 missing
    bool resolved = false;
    QVector<QVariant> values;     // row * columns.size() + slot
    QVector<int> parent;
    QVector<int> firstChild;
    QVector<int> childCount;
    int size() const { return int(parent.size()); }

    int slotOf(const QString& column)
    {
        for (int i = 0; i < columns.size(); ++i)
            if (columns.at(i).compare(column, Qt::CaseInsensitive) == 0)
                return i;
        columns << column;
        return int(columns.size()) - 1;
    }
};

Document::Document(const Layout& layout)
    : m_keep(std::make_shared<const Layout>(layout)), m_layout(m_keep.get())
{
    m_runAt = QDateTime::currentDateTime();
    plan();
    paginate();
}

Document::Document(const Layout& layout, const Recordset& rs)
    : m_keep(std::make_shared<const Layout>(layout)), m_layout(m_keep.get())
{
    m_runAt = QDateTime::currentDateTime();
    plan();
    read(rs);
    paginate();
}

Document::~Document() = default;

namespace {

int levelNamed(const Layout& l, const QString& rows)
{
    if (rows.isEmpty())
        return 0;
    for (int i = 1; i < l.levels.size(); ++i)
        if (l.levels.at(i).rows.compare(rows, Qt::CaseInsensitive) == 0)
            return i;
    qWarning("Informe %s: el nivel \"%s\" no existe", qPrintable(l.name), qPrintable(rows));
    return -1;
}

}  // namespace

void Document::plan()
{
    const Layout& l = *m_layout;
    const int levels = int(l.levels.size());
    const int detail = levels - 1;
    m_levels.resize(levels);
    m_sumsOwned.resize(levels);
    m_sumsTarget.resize(levels);
    m_headerPlan.assign(levels, -1);
    m_footerPlan.assign(levels, -1);

    auto fontOf = [this](const Item& it) {
        for (int i = 0; i < int(m_fonts.size()); ++i)
            if (m_fonts[i].pointSizeF() == it.pt && m_fonts[i].bold() == it.bold)
                return i;
        QFont f;
        f.setFamilies({QStringLiteral("Liberation Sans"), QStringLiteral("Arial"),
                       QStringLiteral("DejaVu Sans")});
        f.setStyleHint(QFont::SansSerif);
        f.setPointSizeF(it.pt > 0 ? it.pt : 9);
        f.setBold(it.bold);
        m_fonts.push_back(f);
        return int(m_fonts.size()) - 1;
    };

    auto addPlan = [&](const Band& band, int level) {
        Plan p;
        p.band = &band;
        p.level = level;
        for (const Item& it : band.items) {
            ItemPlan ip;
            ip.item = &it;
            ip.font = fontOf(it);
            ip.text = it.text;
            if (it.kind == Item::Kind::PageNumber)
                m_pageNumberDeclared = true;
            if (it.kind == Item::Kind::Field && levels > 0) {
                int at = it.level ? levelNamed(l, *it.level) : std::max(level, 0);
                if (at >= 0) {
                    ip.level = at;
                    ip.slot = m_levels[at].slotOf(it.text);
                }
            } else if (it.kind == Item::Kind::Total && levels > 0) {
                const int target = it.level ? levelNamed(l, *it.level) : detail;
                if (target >= 0) {
                    TotalRule s;
                    s.owner = level;
                    s.target = target;
                    s.count = it.countRows;
                    s.money = it.format == Format::Money;
                    if (!s.count)
                        s.slot = m_levels[target].slotOf(it.text);
                    ip.total = int(p.sums.size());
                    p.sums.push_back(int(m_sums.size()));
                    m_sums.push_back(s);
                }
            }
            p.items.push_back(std::move(ip));
        }
        m_plans.push_back(std::move(p));
        return int(m_plans.size()) - 1;
    };

    m_encabezado = addPlan(l.encabezado, -1);
    m_pageHeader = addPlan(l.pageHeader, -1);
    for (int i = 0; i < levels; ++i) {
        m_headerPlan[i] = addPlan(l.levels.at(i).header, i);
        m_footerPlan[i] = addPlan(l.levels.at(i).footer, i);
        m_plans[m_headerPlan[i]].keepWithNext = i < detail;
    }
    m_pageFooter = addPlan(l.pageFooter, -1);
    m_reportFooter = addPlan(l.reportFooter, -1);

    for (int s = 0; s < int(m_sums.size()); ++s) {
        if (m_sums[s].owner >= 0)
            m_sumsOwned[m_sums[s].owner].push_back(s);
        m_sumsTarget[m_sums[s].target].push_back(s);
    }
    m_acc.assign(m_sums.size(), 0.0);

    const QSizeF size = l.page.size(QPageSize::Millimeter);
    m_pageMm = l.orientation == QPageLayout::Landscape ? size.transposed() : size;
}

int Document::addInstance(int plan, int level, int row)
{
    const Plan& p = m_plans[plan];
    Instance inst;
    inst.plan = plan;
    inst.level = level;
    inst.row = row;
    if (!p.sums.empty()) {
        inst.totals = int(m_totals.size());
        m_totals.resize(m_totals.size() + p.sums.size(), 0.0);
    }
    m_body.push_back(inst);
    return int(m_body.size()) - 1;
}

void Document::read(const Recordset& rs)
{
    if (!rs.isOpen() || m_levels.empty())
        return;
    walk(rs, 0, -1);
}

namespace {

double number(const QVariant& v)
{
    if (v.isNull())
        return 0;
    bool ok = false;
    const double d = v.toDouble(&ok);
    return ok ? d : Val(v.toString());
}

}  // namespace

void Document::walk(const Recordset& from, int level, int parentRow)
{
    Recordset rs = from;   // its own position: the caller's stays where it was
    LevelRows& L = m_levels[level];
    if (!L.resolved) {
        const QStringList names = rs.fieldNames();
        for (const QString& c : std::as_const(L.columns)) {
            int at = -1;
            for (int i = 0; i < names.size() && at < 0; ++i)
                if (names.at(i).compare(c, Qt::CaseInsensitive) == 0)
                    at = i;
            if (at < 0)
                qWarning("Informe %s: la columna \"%s\" no está en sus filas",
                         qPrintable(m_layout->name), qPrintable(c));
            L.sourceColumn << at;
        }
        L.resolved = true;
    }
    const int n = rs.recordCount();
    const int width = int(L.columns.size());
    const bool deeper = level + 1 < int(m_levels.size());
    const QString childName = deeper ? m_layout->levels.at(level + 1).rows : QString();
    const Plan& header = m_plans[m_headerPlan[level]];
    const Plan& footer = m_plans[m_footerPlan[level]];
    const bool last = !deeper;
    if (last)
        m_detailRows += n;
    L.values.reserve(L.values.size() + qsizetype(n) * width);

    for (int i = 0; i < n; ++i) {
        const int row = L.size();
        L.parent.append(parentRow);
        L.firstChild.append(deeper ? m_levels[level + 1].size() : 0);
        L.childCount.append(0);
        for (int c = 0; c < width; ++c) {
            const int col = L.sourceColumn.at(c);
            L.values.append(col >= 0 ? rs.valueAt(i, col) : QVariant());
        }
        for (const int s : m_sumsOwned[level])
            m_acc[s] = 0;
        for (const int s : m_sumsTarget[level]) {
            const TotalRule& rule = m_sums[s];
            if (rule.count) {
                m_acc[s] += 1;
            } else {
                const double v = number(L.values.at(qsizetype(row) * width + rule.slot));
                m_acc[s] += rule.money ? std::round(v * 100) / 100 : v;
            }
        }
        const int h = header.band->height > 0 || m_layout->levels.at(level).pageBreakBefore
                          ? addInstance(m_headerPlan[level], level, row)
                          : -1;
        if (deeper) {
            rs.setPosition(i);
            walk(rs.child(childName), level + 1, row);
            m_levels[level].childCount[row] = m_levels[level + 1].size() - m_levels[level].firstChild[row];
        }
        const int f = footer.band->height > 0 ? addInstance(m_footerPlan[level], level, row) : -1;
        // The header and the footer of a row both show the totals of its rows.
        for (const int at : {h, f}) {
            if (at < 0 || m_body[at].totals < 0)
                continue;
            const Plan& p = m_plans[m_body[at].plan];
            for (size_t t = 0; t < p.sums.size(); ++t)
                m_totals[m_body[at].totals + t] = m_acc[p.sums[t]];
        }
    }
}

void Document::paginate()
{
    const Layout& l = *m_layout;
    const double margin = l.marginMm;
    const double bottom = m_pageMm.height() - margin - std::max(0.0, l.pageFooter.height);
    const int levels = int(m_levels.size());

    // The report's own bands read the first row (heading) or the last (footer).
    const int lastTop = levels > 0 ? m_levels[0].size() - 1 : -1;
    auto reportInstance = [&](int plan, int row) {
        Instance inst;
        inst.plan = plan;
        inst.level = row >= 0 ? 0 : -1;
        inst.row = row;
        if (!m_plans[plan].sums.empty()) {
            inst.totals = int(m_totals.size());
            for (const int s : m_plans[plan].sums)
                m_totals.push_back(m_acc[s]);
        }
        return inst;
    };
    m_encInst = reportInstance(m_encabezado, lastTop >= 0 ? 0 : -1);
    m_phInst = reportInstance(m_pageHeader, -1);
    m_pfInst = reportInstance(m_pageFooter, -1);
    if (l.reportFooter.height > 0) {
        m_body.push_back(reportInstance(m_reportFooter, lastTop));
    }

    double y = 0;
    bool hasBody = false;
    auto newPage = [&]() {
        Page p;
        p.first = int(m_placed.size());
        y = margin;
        if (m_pages.empty() && l.encabezado.height > 0)
            y += l.encabezado.height;
        p.headerY = y;
        y += std::max(0.0, l.pageHeader.height);
        m_pages.push_back(p);
        hasBody = false;
    };
    newPage();

    for (int i = 0; i < int(m_body.size()); ++i) {
        const Instance& inst = m_body[i];
        const Plan& plan = m_plans[inst.plan];
        const double h = std::max(0.0, plan.band->height);
        const bool breakBefore = plan.level >= 0 && inst.plan == m_headerPlan[plan.level]
                                 && l.levels.at(plan.level).pageBreakBefore;
        if (breakBefore && hasBody)
            newPage();
        double need = h;
        // A group's header does not stay alone at the foot of a page.
        if (plan.keepWithNext && i + 1 < int(m_body.size()))
            need += std::max(0.0, m_plans[m_body[i + 1].plan].band->height);
        if (hasBody && y + need > bottom + 1e-6)
            newPage();
        if (h <= 0)
            continue;
        Page& page = m_pages.back();
        if (page.count == 0 && inst.level >= 0) {
            page.ctxLevel = inst.level;
            page.ctxRow = inst.row;
        }
        m_placed.push_back({i, y});
        ++page.count;
        y += h;
        hasBody = true;
    }
    // A page with nothing of its own reads the row before it.
    for (size_t p = 0; p < m_pages.size(); ++p) {
        if (m_pages[p].ctxLevel < 0) {
            if (p > 0) {
                m_pages[p].ctxLevel = m_pages[p - 1].ctxLevel;
                m_pages[p].ctxRow = m_pages[p - 1].ctxRow;
            } else if (lastTop >= 0) {
                m_pages[p].ctxLevel = 0;
                m_pages[p].ctxRow = 0;
            }
        }
    }
}

void Document::setCaptions(const QHash<QString, QString>& captions)
{
    m_captions = captions;
    for (Plan& p : m_plans) {
        for (ItemPlan& ip : p.items) {
            const auto it = ip.item->name.isEmpty() ? m_captions.cend()
                                                    : m_captions.constFind(ip.item->name);
            ip.named = it != m_captions.cend();
            ip.text = ip.named ? *it : ip.item->text;
        }
    }
}

void Document::setLogo(const QImage& logo) { m_logo = logo; }

QPageLayout Document::pageLayout() const
{
    return QPageLayout(m_layout->page, m_layout->orientation, QMarginsF(0, 0, 0, 0),
                       QPageLayout::Millimeter);
}

// ---------------------------------------------------------------- texts

QVariant Document::value(int level, int row, int wantLevel, int slot) const
{
    if (level < 0 || row < 0 || wantLevel < 0 || slot < 0)
        return {};
    while (level > wantLevel) {   // a row above: its parent's
        row = m_levels[level].parent.at(row);
        --level;
        if (row < 0)
            return {};
    }
    while (level < wantLevel) {   // a level below: its first row
        if (m_levels[level].childCount.at(row) == 0)
            return {};
        row = m_levels[level].firstChild.at(row);
        ++level;
    }
    const LevelRows& L = m_levels[level];
    const int width = int(L.columns.size());
    return L.values.at(qsizetype(row) * width + slot);
}

namespace {

QString formatted(const QVariant& v, Format f)
{
    switch (f) {
    case Format::Text:
        if (v.isNull())
            return {};
        if (v.typeId() == QMetaType::Double)
            return QString::number(v.toDouble(), 'f', -1);
        return v.toString();
    case Format::Money:
        return v.isNull() ? QString() : money(v);
    case Format::Date: {
        if (v.isNull())
            return {};
        const QDate d = storedDate(v);
        return d.isValid() ? d.toString(QStringLiteral("dd/MM/yyyy")) : v.toString();
    }
    case Format::Whole:
        return v.isNull() ? QString() : QString::number(std::llround(number(v)));
    }
    return v.toString();
}

}  // namespace

QString Document::itemText(const Instance& inst, int item, int page) const
{
    const ItemPlan& ip = m_plans[inst.plan].items[item];
    if (ip.named)
        return ip.text;
    switch (ip.item->kind) {
    case Item::Kind::Caption:
        return ip.text;
    case Item::Kind::Field:
        return formatted(value(inst.level, inst.row, ip.level, ip.slot), ip.item->format);
    case Item::Kind::Total:
        if (inst.totals < 0 || ip.total < 0)
            return {};
        return formatted(m_totals[inst.totals + ip.total],
                         ip.item->countRows && ip.item->format == Format::Text ? Format::Whole
                                                                               : ip.item->format);
    case Item::Kind::PageNumber:
        return QString(ip.text.isEmpty() ? QStringLiteral("Página %1 de %2") : ip.text)
            .replace(QLatin1String("%1"), QString::number(page + 1))
            .replace(QLatin1String("%2"), QString::number(pageCount()));
    case Item::Kind::PrintDate:
        return m_runAt.toString(ip.text.isEmpty() ? QStringLiteral("dd/MM/yyyy hh:mm") : ip.text);
    case Item::Kind::Picture:
    case Item::Kind::Line:
        return {};
    }
    return {};
}

QString Document::pageText(int page) const
{
    if (page < 0 || page >= pageCount())
        return {};
    const Page& pg = m_pages[page];
    QStringList lines;
    auto band = [&](const Instance& inst) {
        QStringList parts;
        for (int i = 0; i < int(m_plans[inst.plan].items.size()); ++i) {
            const QString t = itemText(inst, i, page).trimmed();
            if (!t.isEmpty())
                parts << t;
        }
        if (!parts.isEmpty())
            lines << parts.join(QStringLiteral("  "));
    };
    Instance ph = m_phInst, pf = m_pfInst;
    ph.level = pf.level = pg.ctxLevel;
    ph.row = pf.row = pg.ctxRow;
    if (page == 0 && m_layout->encabezado.height > 0)
        band(m_encInst);
    if (m_layout->pageHeader.height > 0)
        band(ph);
    for (int i = pg.first; i < pg.first + pg.count; ++i)
        band(m_body[m_placed[i].instance]);
    if (m_layout->pageFooter.height > 0)
        band(pf);
    if (!m_pageNumberDeclared && m_layout->pageNumbers)
        lines << QStringLiteral("Página %1 de %2").arg(page + 1).arg(pageCount());
    return lines.join(QLatin1Char('\n'));
}

// ---------------------------------------------------------------- painting

namespace {

// The point size at which `text` fits its box, found once per text, box and
// letter: a page is painted again at every zoom and every print, and a new
// size of a letter is costly to draw.
double fittedSize(const QFont& font, const QRectF& r, int flags, const QString& text,
                  QPaintDevice* device)
{
    static QHash<QString, double> known;
    const QString key = QStringLiteral("%1|%2|%3|%4|%5")
                            .arg(font.key())
                            .arg(qRound(r.width() * 10))
                            .arg(qRound(r.height() * 10))
                            .arg(device ? device->logicalDpiY() : 0)
                            .arg(text);
    if (const auto it = known.constFind(key); it != known.constEnd())
        return *it;
    const double full = font.pointSizeF();
    auto fits = [&](double size) {
        QFont f = font;
        f.setPointSizeF(size);
        const QFontMetricsF m(f, device);
        if (flags & Qt::TextWordWrap)
            return m.boundingRect(r, flags, text).height() <= r.height();
        return m.horizontalAdvance(text) <= r.width();
    };
    double size = full;
    if (!fits(full)) {
        // Down to half the size, by halving the interval a few times.
        double lo = full * 0.5, hi = full;
        for (int i = 0; i < 6; ++i) {
            const double mid = (lo + hi) / 2;
            (fits(mid) ? lo : hi) = mid;
        }
        size = lo;
    }
    if (known.size() > 2000)
        known.clear();
    known.insert(key, size);
    return size;
}

void drawText(QPainter& p, const QFont& font, const QRectF& r, Align align, const QString& text)
{
    if (text.isEmpty())
        return;
    if (p.font() != font)
        p.setFont(font);
    const QFontMetricsF fm(p.font(), p.device());
    const Qt::Alignment h = align == Align::Right    ? Qt::AlignRight
                            : align == Align::Center ? Qt::AlignHCenter
                                                     : Qt::AlignLeft;
    const bool wraps = r.height() >= 1.8 * fm.height();   // room for more than a line
    const int flags = wraps ? int(h | Qt::AlignTop | Qt::TextWordWrap | Qt::TextDontClip) : 0;
    // A text longer than its box (a long address in the heading) gets a
    // smaller letter, down to half the size, rather than running off the
    // paper or over the next item; past that, a single line is elided.
    const double size = (wraps || fm.horizontalAdvance(text) > r.width())
                            ? fittedSize(font, r, flags, text, p.device())
                            : font.pointSizeF();
    QFont used = font;
    if (size != font.pointSizeF()) {
        used.setPointSizeF(size);
        p.setFont(used);
    }
    if (wraps) {
        p.drawText(r, flags, text);
    } else {
        const QFontMetricsF m(p.font(), p.device());
        const QString shown = m.horizontalAdvance(text) > r.width()
                                  ? m.elidedText(text, Qt::ElideRight, r.width())
                                  : text;
        const double w = m.horizontalAdvance(shown);
        const double x = align == Align::Right    ? r.right() - w
                         : align == Align::Center ? r.left() + (r.width() - w) / 2
                                                  : r.left();
        p.drawText(QPointF(x, r.top() + (r.height() - m.height()) / 2 + m.ascent()), shown);
    }
    if (size != font.pointSizeF())
        p.setFont(font);
}

}  // namespace

void Document::paintBand(QPainter& p, const Instance& inst, double y, int page, double dpmm) const
{
    const Plan& plan = m_plans[inst.plan];
    const double left = m_layout->marginMm;
    for (int i = 0; i < int(plan.items.size()); ++i) {
        const ItemPlan& ip = plan.items[i];
        const Item& it = *ip.item;
        const QRectF r((left + it.box.x) * dpmm, (y + it.box.y) * dpmm, it.box.w * dpmm,
                       it.box.h * dpmm);
        switch (it.kind) {
        case Item::Kind::Line: {
            const double my = r.center().y();
            p.setPen(QPen(Qt::black, std::max(1.0, 0.25 * dpmm)));
            p.drawLine(QPointF(r.left(), my), QPointF(r.right(), my));
            break;
        }
        case Item::Kind::Picture:
            if (it.text.compare(QStringLiteral("logo"), Qt::CaseInsensitive) == 0
                && !m_logo.isNull()) {
                QSizeF s = QSizeF(m_logo.size()).scaled(r.size(), Qt::KeepAspectRatio);
                p.drawImage(QRectF(r.topLeft(), s), m_logo);
            }
            break;
        default:
            p.setPen(Qt::black);
            drawText(p, m_fonts[ip.font], r, it.align, itemText(inst, i, page));
            break;
        }
    }
}

void Document::paintPage(QPainter& p, int page, double dpmm) const
{
    if (page < 0 || page >= pageCount())
        return;
    const Page& pg = m_pages[page];
    p.save();
    p.setPen(Qt::black);
    if (page == 0 && m_layout->encabezado.height > 0)
        paintBand(p, m_encInst, m_layout->marginMm, page, dpmm);
    Instance ph = m_phInst, pf = m_pfInst;
    ph.level = pf.level = pg.ctxLevel;
    ph.row = pf.row = pg.ctxRow;
    if (m_layout->pageHeader.height > 0)
        paintBand(p, ph, pg.headerY, page, dpmm);
    for (int i = pg.first; i < pg.first + pg.count; ++i)
        paintBand(p, m_body[m_placed[i].instance], m_placed[i].y, page, dpmm);
    const double footY = m_pageMm.height() - m_layout->marginMm - m_layout->pageFooter.height;
    if (m_layout->pageFooter.height > 0)
        paintBand(p, pf, footY, page, dpmm);
    if (!m_pageNumberDeclared && m_layout->pageNumbers) {
        QFont f = m_fonts.empty() ? QFont() : m_fonts.front();
        f.setPointSizeF(8);
        f.setBold(false);
        const double m = m_layout->marginMm;
        const QRectF r(m * dpmm, (m_pageMm.height() - m + 1) * dpmm,
                       (m_pageMm.width() - 2 * m) * dpmm, 4 * dpmm);
        drawText(p, f, r, Align::Right,
                 QStringLiteral("Página %1 de %2").arg(page + 1).arg(pageCount()));
    }
    p.restore();
}

bool Document::print(QPagedPaintDevice& device, int from, int to) const
{
    device.setPageLayout(pageLayout());
    if (auto* pdf = dynamic_cast<QPdfWriter*>(&device)) {
        pdf->setTitle(m_layout->title);
        pdf->setCreator(QStringLiteral("Tarvenquil"));
    }
    QPainter p;
    if (!p.begin(&device))
        return false;
    const double dpmm = device.logicalDpiX() / 25.4;
    // A printer that keeps margins of its own puts the painter's origin at
    // them: the pages are drawn from the paper's corner all the same.
    const QRectF printable = device.pageLayout().paintRect(QPageLayout::Millimeter);
    p.translate(-printable.left() * dpmm, -printable.top() * dpmm);
    if (to < 0 || to >= pageCount())
        to = pageCount() - 1;
    for (int page = std::max(0, from); page <= to; ++page) {
        if (page > std::max(0, from))
            device.newPage();
        paintPage(p, page, dpmm);
    }
    return p.end();
}

QImage Document::pageImage(int page, int widthPx) const
{
    widthPx = std::max(widthPx, 50);
    const double dpmm = widthPx / m_pageMm.width();
    QImage img(widthPx, int(std::ceil(m_pageMm.height() * dpmm)), QImage::Format_RGB32);
    img.setDotsPerMeterX(int(std::lround(dpmm * 1000)));
    img.setDotsPerMeterY(int(std::lround(dpmm * 1000)));
    img.fill(Qt::white);
    QPainter p(&img);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    paintPage(p, page, dpmm);
    return img;
}

}  // namespace tq::report
