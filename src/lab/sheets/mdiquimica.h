#pragma once
// "QUIMICA - CLINICA" opened to correct a saved chemistry sheet: the page
// and typing rules of its fill-in screen, "Guardar Cambios" and "Salir"
// under the page.
#include "lab/sheets/mdihematologia.h"

#include <memory>

namespace Ui {
class mdiquimica;
}

class mdiquimica : public tq::sheets::CorrectionGrid {
    Q_OBJECT
public:
    explicit mdiquimica(QWidget* parent = nullptr);
    ~mdiquimica() override;

private:
    std::unique_ptr<Ui::mdiquimica> ui;
};
