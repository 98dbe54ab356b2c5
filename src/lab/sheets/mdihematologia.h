#pragma once
// "HEMATOLOGIA" opened to correct a saved blood count: the fill-in screen's
// page and typing rules, with "Guardar Cambios" and "Salir" under the page in
// place of the menu; nothing is printed from here.
//
// CorrectionGrid is what the three grid families' correction screens share
// (mdiuroanalisis and mdiquimica derive from it too).
#include "lab/sheets/gridsheet.h"

#include <memory>

class QPushButton;

namespace Ui {
class mdihematologia;
}

namespace tq::sheets {

class CorrectionGrid : public GridSheet {
    Q_OBJECT
protected:
    using GridSheet::GridSheet;

    // The page laid out as the family's fill-in screen lays it (`widths` are
    // that screen's), the two buttons its only actions.
    template <class Form>
    void attachCorrection(Form& ui, const QList<int>& widths)
    {
        attachGrid(ui.pagina, ui.Grid1, ui.Text1, widths,
                   {actionOf(ui.guardar), nullptr, nullptr, nullptr, actionOf(ui.salir)});
    }

    QString notStartedMessage() const override;

private:
    // The sheet's actions are QActions; a button triggers its own and is
    // disabled with it (after a save, "Guardar Cambios").
    QAction* actionOf(QPushButton* button);
};

}  // namespace tq::sheets

class mdihematologia : public tq::sheets::CorrectionGrid {
    Q_OBJECT
public:
    explicit mdihematologia(QWidget* parent = nullptr);
    ~mdihematologia() override;

private:
    std::unique_ptr<Ui::mdihematologia> ui;
};
