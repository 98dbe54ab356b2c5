#pragma once
// "PARASITOLOGICO": the stool examination, ten fields, the macroscopic ones
// first and then what the microscope found.
#include "lab/sheets/gridsheet.h"

#include <QList>
#include <QStringList>

class QLineEdit;
#include <memory>

namespace Ui {
class Form23;
}

class Form23 : public tq::sheets::SheetScreen {
    Q_OBJECT
public:
    explicit Form23(QWidget* parent = nullptr);
    ~Form23() override;

    // Text1..Text10, in the order they are stored (cells 1 to 10).
    QStringList fields() const;

protected:
    tq::sheets::SavedSheet store(const tq::sheets::SheetContext& context) override;
    void fillStored(const tq::sheets::StoredSheet& sheet) override;
    void lockStored() override;
    tq::corrections::Saved storeCorrection(const tq::corrections::Target& target,
                                           const QString& descripcion) override;

private:
    QList<QLineEdit*> textBoxes() const;
    std::unique_ptr<Ui::Form23> ui;
};
