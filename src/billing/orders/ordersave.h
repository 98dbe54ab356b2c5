#pragma once
// Orders (quotations): a priced document for a patient with no money, no
// work-table effect and no receivable. An invoice may import one later, which
// closes it.
#include "billing/invoice/invoicesave.h"

#include <QDate>
#include <QList>
#include <QString>
#include <cstdint>
#include <optional>

namespace tq {

// The number the next order takes: the last one plus 1, or 1.
std::int32_t nextOrderNumber();

// Writes the order and all its lines (with their unit prices), all or none.
// The number (computed right before the save) is checked again inside the
// transaction and moved to the next free one when another station took it.
// Throws DbError or AppError, having written nothing.
SaveOutcome saveOrder(const PricedDocument& doc);

// Closes the orders: `anulada`, today's date and who closed them, in one
// transaction. An order closed already keeps its date and who closed it.
// Returns how many orders were closed now.
int closeOrders(const QList<std::int32_t>& orders, const QString& user);

// An order as an invoice imports it: its amounts and lines as they were saved.
struct StoredOrder {
    std::int32_t numero = 0;
    std::int32_t codPaciente = 0;
    QString paciente;      // nombre_paciente + " " + apellido_paciente
    QString direccion;
    QDate nacimiento;
    std::int32_t codSeguro = 0;
    QString empresa;       // the insurer's name
    double subtotal = 0;
    double total = 0;
    double valAdicional = 0;
    QString adicional;     // "Descuento", "Recargo" or empty
    std::optional<std::int32_t> codDoctor;
    QString doctor;        // "code - name surname", as the invoice's doctor list reads
    struct Line {
        std::int32_t cantidad = 0;
        std::int32_t codigo = 0;
        QString examen;
        double precio = 0;
        double subtotal = 0;
    };
    QList<Line> lines;
};

// The order with its patient and the patient's insurer; nothing when the
// order, its patient or the insurer row is missing.
std::optional<StoredOrder> readOrder(std::int32_t numero);

}  // namespace tq
