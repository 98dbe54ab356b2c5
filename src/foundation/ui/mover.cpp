#include "foundation/ui/mover.h"

#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/prompt.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QSet>

namespace tq {

TwoListMover::TwoListMover(const MoverWidgets& widgets, QObject* parent)
    : QObject(parent), m_w(widgets)
{
    if (!m_w.left || !m_w.right)
        throw AppError(QStringLiteral("La pantalla no entregó sus dos listas."));
    m_new.fill(false, m_w.right->rows() - 1);
    if (m_w.addOne)
        onClick(m_w.addOne, QStringLiteral("agregar el elemento a la lista"), [this] { addCurrent(); });
    if (m_w.addAll)
        onClick(m_w.addAll, QStringLiteral("agregar todos los elementos a la lista"), [this] { addAll(); });
    if (m_w.removeOne)
        onClick(m_w.removeOne, QStringLiteral("quitar el elemento de la lista"), [this] { removeCurrent(); });
    showCount();
}

void TwoListMover::setKeyColumns(int left, int right)
{
    m_leftKey = left;
    m_rightKey = right;
}

void TwoListMover::setRowMapping(std::function<QStringList(int)> map) { m_map = std::move(map); }

void TwoListMover::setCounting(Count c)
{
    m_counting = c;
    showCount();
}

void TwoListMover::clearRight()
{
    m_w.right->setRows(1);
    m_new.clear();
    showCount();
    emit rightChanged();
}

void TwoListMover::takeRightAsFilled()
{
    m_new.fill(false, m_w.right->rows() - 1);
    showCount();
    emit rightChanged();
}

void TwoListMover::appendRight(const QStringList& cells, bool isNew)
{
    appendRows({cells}, isNew);
    showCount();
    emit rightChanged();
}

bool TwoListMover::contains(const QString& key) const
{
    const FlexGrid* r = m_w.right;
    for (int row = 1; row < r->rows(); ++row)
        if (r->textMatrix(row, m_rightKey) == key)
            return true;
    return false;
}

bool TwoListMover::isNew(int row) const
{
    return row >= 1 && row - 1 < m_new.size() && m_new.at(row - 1);
}

int TwoListMover::newRows() const { return int(m_new.count(true)); }

int TwoListMover::count() const
{
    return m_counting == Count::NewRows ? newRows() : m_w.right->rows() - 1;
}

QStringList TwoListMover::rowFor(int leftRow) const
{
    if (m_map)
        return m_map(leftRow);
    QStringList cells;
    for (int c = 0; c < m_w.right->cols(); ++c)
        cells << (c < m_w.left->cols() ? m_w.left->textMatrix(leftRow, c) : QString());
    return cells;
}

// Rows go in with one change notice per column, so that ">>" over a long
// list stays quick.
void TwoListMover::appendRows(const QVector<QStringList>& rows, bool isNew)
{
    if (rows.isEmpty())
        return;
    FlexGrid* r = m_w.right;
    const int first = r->rows();
    r->setRows(first + int(rows.size()));
    for (int c = 0; c < r->cols(); ++c) {
        QStringList texts;
        texts.reserve(rows.size());
        for (const QStringList& cells : rows)
            texts << cells.value(c);
        r->setColumnTexts(c, texts, first);
    }
    m_new.resize(first - 1);
    for (int i = 0; i < rows.size(); ++i) {
        m_new.append(isNew);
        if (isNew)
            for (int c = 0; c < r->cols(); ++c)
                r->setCellBackColor(first + i, c, newRowColour());
    }
}

bool TwoListMover::addCurrent()
{
    if (m_beforeAdd && !m_beforeAdd())
        return false;
    const FlexGrid* l = m_w.left;
    const int row = l->row();
    if (row < 1 || row >= l->rows())
        return false;
    const QString key = l->textMatrix(row, m_leftKey);
    if (key.isEmpty())
        return false;
    if (contains(key)) {
        prompts().message(m_duplicate, Icon::Exclamation);
        return false;
    }
    appendRows({rowFor(row)}, true);
    showCount();
    emit rightChanged();
    return true;
}

int TwoListMover::addAll()
{
    if (m_beforeAddAll && !m_beforeAddAll())
        return 0;
    const FlexGrid* l = m_w.left;
    QSet<QString> present;
    for (int row = 1; row < m_w.right->rows(); ++row)
        present.insert(m_w.right->textMatrix(row, m_rightKey));
    QVector<QStringList> rows;
    for (int row = 1; row < l->rows(); ++row) {
        const QString key = l->textMatrix(row, m_leftKey);
        if (key.isEmpty() || present.contains(key))
            continue;
        present.insert(key);
        rows << rowFor(row);
    }
    appendRows(rows, true);
    showCount();
    if (!rows.isEmpty())
        emit rightChanged();
    return int(rows.size());
}

bool TwoListMover::removeCurrent()
{
    FlexGrid* r = m_w.right;
    const int row = r->row();
    if (row < 1 || row >= r->rows())
        return false;
    // The rows below move up one, with their marks and colours.
    for (int below = row; below < r->rows() - 1; ++below) {
        for (int c = 0; c < r->cols(); ++c) {
            r->setTextMatrix(below, c, r->textMatrix(below + 1, c));
            r->setCellBackColor(below, c, r->cellBackColor(below + 1, c));
        }
    }
    m_new.remove(row - 1);
    r->setRows(r->rows() - 1);
    showCount();
    emit rightChanged();
    return true;
}

void TwoListMover::showCount()
{
    const QString text = QString::number(count());
    if (auto* le = qobject_cast<QLineEdit*>(m_w.count))
        le->setText(text);
    else if (auto* lb = qobject_cast<QLabel*>(m_w.count))
        lb->setText(text);
}

}  // namespace tq
