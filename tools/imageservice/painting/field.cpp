#include "imageservice/painting/field.h"

#include <algorithm>

namespace imageservice {

Field::Field(const Canvas &canvas, Extent extent, float cell,
    const std::function<float(float, float)> &value)
    : m_cell(std::max(static_cast<int>(cell * canvas.scale()), 1)),
      m_top(static_cast<int>(extent.top * canvas.scale())), m_columns(canvas.width() / m_cell + 2),
      m_rows(static_cast<int>(std::max(extent.bottom - extent.top, 0.0F) * canvas.scale()) / m_cell
          + 2),
      m_values(static_cast<size_t>(m_columns) * m_rows)
{
    const float unit = 1 / canvas.scale();
    auto next = m_values.begin();
    for (int row = 0; row < m_rows; ++row) {
        for (int column = 0; column < m_columns; ++column) {
            *next++ = value(static_cast<float>(column * m_cell) * unit,
                static_cast<float>(m_top + row * m_cell) * unit);
        }
    }
}

float Field::at(int x, int y) const
{
    const int down = std::max(y - m_top, 0);
    const int column = std::clamp(x / m_cell, 0, m_columns - 2);
    const int row = std::clamp(down / m_cell, 0, m_rows - 2);
    const float perCell = 1 / static_cast<float>(m_cell);
    const float dx = static_cast<float>(x - column * m_cell) * perCell;
    const float dy = std::min(static_cast<float>(down - row * m_cell) * perCell, 1.0F);
    const float *upper = m_values.data() + static_cast<size_t>(row) * m_columns + column;
    const float *lower = upper + m_columns;
    const float above = upper[0] + (upper[1] - upper[0]) * dx;
    const float below = lower[0] + (lower[1] - lower[0]) * dx;
    return above + (below - above) * dy;
}

} // namespace imageservice
