#pragma once
// "Control de Empleados": the employees, who are at once the users of the
// system, with their role and their sign-on name.
#include "foundation/ui/register_screen.h"

#include <memory>

namespace Ui {
class Form1;
}

class Form1 : public tq::RegisterScreen {
    Q_OBJECT
public:
    explicit Form1(QWidget* parent = nullptr);
    ~Form1() override;

protected:
    void loadGrid() override;
    void showRow(int row) override;
    std::optional<tq::Refusal> validate(int mode) override;
    QVariant saveAdd() override;
    void saveModify() override;
    void deleteSelected() override;
    QString codeColumn() const override { return QStringLiteral("cod_empleado"); }

private:
    std::unique_ptr<Ui::Form1> ui;
};
