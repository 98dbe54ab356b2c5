#pragma once
// "UROANALISIS" opened to correct a saved urinalysis: the page and typing
// rules of its fill-in screen, "Guardar Cambios" and "Salir" under the page.
#include "lab/sheets/mdihematologia.h"

#include <memory>

namespace Ui {
class mdiuroanalisis;
}

class mdiuroanalisis : public tq::sheets::CorrectionGrid {
    Q_OBJECT
public:
    explicit mdiuroanalisis(QWidget* parent = nullptr);
    ~mdiuroanalisis() override;

private:
    std::unique_ptr<Ui::mdiuroanalisis> ui;
};
