#pragma once
// The blank hematology format: the patient's name, age, sex and a date put
// on the printed form whose results are written by hand. The heading goes
// through the one scratch row of `Tempo`, which the report reads.
#include <QWidget>
#include <memory>

namespace Ui {
class datosimprimir;
}

class datosimprimir : public QWidget {
    Q_OBJECT
    // The name the patient list hands over.
    Q_PROPERTY(QString nombre READ nombre WRITE setNombre)
public:
    explicit datosimprimir(QWidget* parent = nullptr);
    ~datosimprimir() override;

    QString nombre() const;
    void setNombre(const QString& nombre);

private:
    void imprimir();
    void cancelar();

    std::unique_ptr<Ui::datosimprimir> ui;
};
