#pragma once
// How the invoice asks for an order to import: the order search opens
// modally serving the invoice, and the order chosen there comes back as its
// number. Closing the search without choosing gives nothing.
#include <cstdint>
#include <optional>

namespace tq {

// FbuscarOrden, modal; the picker selector reads 1 (the invoice) while it is open.
std::optional<std::int32_t> chooseOrder();

}  // namespace tq
