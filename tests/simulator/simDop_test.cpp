#include "tools/simulator/simDop.h"

#include "tools/simulator/simNoise.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>

namespace {

simSat SatAt(double elevation, double azimuth, bool used = true)
{
    simSat sat;
    sat.Elevation = elevation;
    sat.Azimuth = azimuth;
    sat.Used = used;
    return sat;
}

// The inverse of (A^T A), by elimination, where A is written out row by row.
std::array<std::array<double, 4>, 4> Cofactors(const std::vector<simSat>& sats)
{
    std::array<std::array<double, 8>, 4> m = {};
    for (const simSat& sat : sats) {
        const double e = sat.Elevation * std::numbers::pi / 180;
        const double a = sat.Azimuth * std::numbers::pi / 180;
        const double line[4] = {-std::cos(e) * std::sin(a), -std::cos(e) * std::cos(a), -std::sin(e), 1};
        for (size_t i = 0; i < 4; ++i) {
            for (size_t j = 0; j < 4; ++j)
                m[i][j] += line[i] * line[j];
        }
    }
    for (size_t i = 0; i < 4; ++i)
        m[i][4 + i] = 1;
    for (size_t i = 0; i < 4; ++i) {
        size_t best = i;
        for (size_t k = i + 1; k < 4; ++k)
            best = std::fabs(m[k][i]) > std::fabs(m[best][i]) ? k : best;
        std::swap(m[i], m[best]);
        const double pivot = m[i][i];
        for (double& value : m[i])
            value /= pivot;
        for (size_t k = 0; k < 4; ++k) {
            const double factor = m[k][i];
            for (size_t j = 0; k != i && j < 8; ++j)
                m[k][j] -= factor * m[i][j];
        }
    }
    std::array<std::array<double, 4>, 4> inverse = {};
    for (size_t i = 0; i < 4; ++i)
        std::copy(m[i].begin() + 4, m[i].end(), inverse[i].begin());
    return inverse;
}

TEST(simDop, IsTheRootOfTheCofactors)
{
    simNoise noise(7);
    for (unsigned count = 5; count < 30; ++count) {
        std::vector<simSat> sats;
        for (unsigned number = 0; number < count; ++number)
            sats.push_back(SatAt(5 + 85 * noise.Unit(), 360 * noise.Unit()));
        const auto q = Cofactors(sats);
        const std::optional<simDop> dop = simDopOf(sats);
        ASSERT_TRUE(dop);
        EXPECT_NEAR(dop->E, std::sqrt(q[0][0]), 1e-6);
        EXPECT_NEAR(dop->N, std::sqrt(q[1][1]), 1e-6);
        EXPECT_NEAR(dop->V, std::sqrt(q[2][2]), 1e-6);
        EXPECT_NEAR(dop->T, std::sqrt(q[3][3]), 1e-6);
        EXPECT_NEAR(dop->H, std::sqrt(q[0][0] + q[1][1]), 1e-6);
        EXPECT_NEAR(dop->P, std::sqrt(q[0][0] + q[1][1] + q[2][2]), 1e-6);
        EXPECT_NEAR(dop->G, std::sqrt(q[0][0] + q[1][1] + q[2][2] + q[3][3]), 1e-6);
    }
}

TEST(simDop, KnowsATextbookSky)
{
    // One overhead and three on the horizon, evenly: the horizontal errors are sqrt(2/3) each way.
    const std::vector<simSat> sats = {SatAt(90, 0), SatAt(0, 0), SatAt(0, 120), SatAt(0, 240)};
    const std::optional<simDop> dop = simDopOf(sats);
    ASSERT_TRUE(dop);
    EXPECT_NEAR(dop->H, std::sqrt(4.0 / 3), 1e-9);
    EXPECT_NEAR(dop->V, std::sqrt(4.0 / 3), 1e-9);
    EXPECT_NEAR(dop->T, std::sqrt(1.0 / 3), 1e-9);
}

TEST(simDop, CountsOnlyWhatIsUsed)
{
    std::vector<simSat> sats = {SatAt(80, 0), SatAt(30, 90), SatAt(20, 200), SatAt(45, 300)};
    const std::optional<simDop> four = simDopOf(sats);
    sats.push_back(SatAt(10, 10, false));
    EXPECT_NEAR(simDopOf(sats)->P, four->P, 1e-12);
    sats.back().Used = true;
    EXPECT_LT(simDopOf(sats)->P, four->P);
}

TEST(simDop, HasNoneWithThreeSatellitesOrAllAtOnePlace)
{
    EXPECT_FALSE(simDopOf({}));
    EXPECT_FALSE(simDopOf(std::vector<simSat>{SatAt(80, 0), SatAt(30, 90), SatAt(20, 200)}));
    EXPECT_FALSE(simDopOf(std::vector<simSat>(6, SatAt(40, 40))));
}

}  // namespace
