#pragma once
// "Pantalla Edicion de Tipos Examen": the exam types that group the
// catalogue. Types are added and renamed here, never deleted.
#include <QWidget>
#include <cstdint>
#include <memory>

namespace Ui {
class Form3;
}

class Form3 : public QWidget {
    Q_OBJECT
public:
    explicit Form3(QWidget* parent = nullptr);
    ~Form3() override;

private:
    void refresh();
    void addType();
    void renameType();
    bool fits(const QString& text);

    std::unique_ptr<Ui::Form3> ui;
    std::int32_t m_code = 0;
    bool m_chosen = false;
};
