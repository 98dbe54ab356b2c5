#pragma once
// The pending orders (neither cancelled nor billed: either closes them) as
// the order search and the order cancelling list them: number, date
// "dd/mm/yyyy" and the patient's name, read in one query. Both screens show them in a grid of those three
// columns and sort it in place.
#include <QDate>
#include <QString>
#include <QStringList>

namespace tq {

class FlexGrid;

// The rows of a list, one text column each, ready for the grid.
struct OrderRows {
    QStringList numero;
    QStringList fecha;     // "dd/mm/yyyy"
    QStringList cliente;   // nombre_paciente + " " + apellido_paciente
    int size() const { return int(numero.size()); }
};

// Every pending order, by date and then by number.
OrderRows pendingOrders();

// Pending orders whose number starts with the digits typed, by number. A
// blank text gives every pending order; a text that is not all digits names
// no order and gives none.
OrderRows pendingOrdersNumbered(const QString& typed);

// Pending orders dated from `from` to `to`, both days included, by number.
OrderRows pendingOrdersBetween(const QDate& from, const QDate& to);

// The grid's columns: number, date, patient.
enum OrderColumn { OrderNumber = 0, OrderDate = 1, OrderClient = 2 };

// The rows into the grid below the header texts given; the widths stay as the
// screen set them. An empty list leaves the header alone.
void showOrders(FlexGrid* grid, const OrderRows& rows, const QStringList& headers);

// Sorts the grid's rows in place: the number as a number, the patient as
// text (capitals or not), the date as a date. Rows that tie keep their order.
void sortOrders(FlexGrid* grid, OrderColumn by);

}  // namespace tq
