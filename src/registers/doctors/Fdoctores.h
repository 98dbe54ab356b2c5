#pragma once
// "Ingreso de Remitentes": the doctors who refer patients, with the
// commission percentage that the commission payments read.
#include "foundation/ui/register_screen.h"

#include <memory>

namespace Ui {
class Fdoctores;
}

class Fdoctores : public tq::RegisterScreen {
    Q_OBJECT
public:
    explicit Fdoctores(QWidget* parent = nullptr);
    ~Fdoctores() override;

protected:
    void loadGrid() override;
    void showRow(int row) override;
    std::optional<tq::Refusal> validate(int mode) override;
    QVariant saveAdd() override;
    void saveModify() override;
    void deleteSelected() override;
    void afterDelete() override;
    QString codeColumn() const override { return QStringLiteral("Cod_doctor"); }
    QString emptyListMessage() const override;

private:
    std::unique_ptr<Ui::Fdoctores> ui;
};
