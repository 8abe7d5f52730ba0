#include "tools/simulator/simDop.h"

#include <array>
#include <cmath>
#include <numbers>

namespace {

constexpr size_t Unknowns = 4;  // east, north, up, time
constexpr double Degree = std::numbers::pi / 180;

using row = std::array<double, Unknowns>;
using matrix = std::array<row, Unknowns>;

// The product of the geometry matrix's transpose with itself.
matrix NormalMatrix(std::span<const simSat> sats)
{
    matrix normal = {};
    for (const simSat& sat : sats) {
        if (!sat.Used)
            continue;
        const double elevation = sat.Elevation * Degree;
        const double azimuth = sat.Azimuth * Degree;
        const row line = {std::cos(elevation) * std::sin(azimuth), std::cos(elevation) * std::cos(azimuth),
                          std::sin(elevation), 1};
        for (size_t i = 0; i < Unknowns; ++i) {
            for (size_t j = 0; j < Unknowns; ++j)
                normal[i][j] += line[i] * line[j];
        }
    }
    return normal;
}

// Splits a matrix into a lower triangle and its transpose; false when there is none.
bool Split(const matrix& whole, matrix& lower)
{
    constexpr double Smallest = 1e-9;
    for (size_t i = 0; i < Unknowns; ++i) {
        for (size_t j = 0; j <= i; ++j) {
            double rest = whole[i][j];
            for (size_t k = 0; k < j; ++k)
                rest -= lower[i][k] * lower[j][k];
            if (i != j)
                lower[i][j] = rest / lower[j][j];
            else if (rest < Smallest)
                return false;
            else
                lower[i][i] = std::sqrt(rest);
        }
    }
    return true;
}

// The diagonal of the inverse: the squared length of each column of the triangle's inverse.
row InverseDiagonal(const matrix& lower)
{
    row diagonal = {};
    for (size_t column = 0; column < Unknowns; ++column) {
        row solved = {};
        for (size_t i = column; i < Unknowns; ++i) {
            double rest = i == column ? 1 : 0;
            for (size_t k = column; k < i; ++k)
                rest -= lower[i][k] * solved[k];
            solved[i] = rest / lower[i][i];
        }
        for (size_t i = column; i < Unknowns; ++i)
            diagonal[column] += solved[i] * solved[i];
    }
    return diagonal;
}

}  // namespace

std::optional<simDop> simDopOf(std::span<const simSat> sats)
{
    matrix lower = {};
    if (!Split(NormalMatrix(sats), lower))
        return std::nullopt;
    const row q = InverseDiagonal(lower);
    simDop dop;
    dop.E = std::sqrt(q[0]);
    dop.N = std::sqrt(q[1]);
    dop.V = std::sqrt(q[2]);
    dop.T = std::sqrt(q[3]);
    dop.H = std::sqrt(q[0] + q[1]);
    dop.P = std::sqrt(q[0] + q[1] + q[2]);
    dop.G = std::sqrt(q[0] + q[1] + q[2] + q[3]);
    return dop;
}
