#include "imageservice/painting/conifer.h"

#include "imageservice/painting/dice.h"

#include <cmath>

namespace imageservice {

namespace {

/// A branch in side view, from the trunk to its tip. In pixels.
struct Branch
{
    float x;
    float y;
    float reach; ///< Negative to the left.
    float fall; ///< How far below its start the tip hangs; negative where it points up.
    float thickness;
    float light; ///< 0 in the shade of the tree, 1 in the sun.
    float snow;
};

class ConiferPainter
{
public:
    ConiferPainter(Canvas &canvas, const Conifer &tree)
        : m_canvas(canvas), m_tree(tree), m_dice(tree.shape, "conifer")
    {
    }

    void paint()
    {
        paintTrunk();
        const float crown = m_tree.height * 0.93F;
        const float top = m_tree.foot - m_tree.height;
        const int tiers = static_cast<int>(std::clamp(m_tree.height / 5, 7.0F, 46.0F));
        // From below, as each tier hangs over the one under it.
        for (int tier = tiers; tier > 0; --tier) {
            const float down = (static_cast<float>(tier) + m_dice.between(-0.35F, 0.35F))
                / static_cast<float>(tiers);
            const float gap = crown / static_cast<float>(tiers);
            paintTier(std::clamp(down, 0.02F, 1.0F), top + crown * down * 0.96F, gap);
        }
    }

private:
    void paintTrunk()
    {
        const float half = std::max(m_tree.height * 0.011F, 0.35F);
        const int top = static_cast<int>(m_tree.foot - m_tree.height);
        for (int y = std::max(top, 0); y <= static_cast<int>(m_tree.foot); ++y) {
            const float down = static_cast<float>(y - top) / m_tree.height;
            const float wide = half * (0.25F + 0.75F * down);
            for (int x = static_cast<int>(m_tree.x - wide); x <= static_cast<int>(m_tree.x + wide);
                 ++x) {
                const auto left = static_cast<float>(x);
                const float cover
                    = std::min(left + 1, m_tree.x + wide) - std::max(left, m_tree.x - wide);
                m_canvas.blend(x, y, m_tree.shade * 0.8F, std::clamp(cover, 0.0F, 1.0F));
            }
        }
    }

    void paintTier(float down, float y, float gap)
    {
        const float half
            = m_tree.height * m_tree.slimness * (0.04F + 0.96F * std::pow(down, 0.88F));
        // Young branches near the tip point up, old ones hang.
        const float hang = mix(-0.55F, 0.42F, std::sqrt(down));
        const int count = m_tree.height > 120 ? 6 : 3;
        for (int index = 0; index < count; ++index) {
            // Those behind first; the last ones point at us and look short.
            const float turn = static_cast<float>(index) / static_cast<float>(count - 1);
            const float side = index % 2 == 0 ? 1.0F : -1.0F;
            const float length = half * m_dice.between(0.72F, 1.12F);
            const float reach = side * length * mix(1.0F, 0.28F, turn * turn);
            const float light = 0.30F + 0.36F * side * m_tree.sunSide * (1 - 0.5F * turn)
                + 0.22F * turn + m_dice.between(-0.1F, 0.1F);
            paintBranch({m_tree.x, y + gap * m_dice.between(-0.4F, 0.4F), reach,
                length * (hang + 0.3F * turn) * m_dice.between(0.8F, 1.2F),
                gap * 0.9F + length * 0.16F, light, m_tree.snow});
        }
    }

    void paintBranch(const Branch &branch)
    {
        const float tip = branch.x + branch.reach;
        const int first = std::max(static_cast<int>(std::min(branch.x, tip)), 0);
        const int last = std::min(static_cast<int>(std::max(branch.x, tip)), m_canvas.width() - 1);
        float twig = 0;
        for (int x = first; x <= last; ++x) {
            const float out
                = std::clamp((static_cast<float>(x) + 0.5F - branch.x) / branch.reach, 0.0F, 1.0F);
            // Twigs next to each other are about as long; each is a few pixels wide at most.
            twig = mix(twig, m_dice.unit(), 0.45F);
            const float thick = branch.thickness * (1 - out * out * out) * (0.45F + 0.9F * twig);
            const float middle = branch.y
                + branch.fall * (0.75F * out + 0.55F * out * out - 0.3F * out * out * out);
            paintTwigs(x, middle - 0.22F * thick, middle + 0.78F * thick, branch);
        }
    }

    void paintTwigs(int x, float top, float bottom, const Branch &branch)
    {
        const int first = std::max(static_cast<int>(top), 0);
        const int last = std::min(static_cast<int>(bottom), m_canvas.height() - 1);
        const float span = 1 / std::max(bottom - top, 1.0F);
        for (int y = first; y <= last; ++y) {
            const auto row = static_cast<float>(y);
            const float cover = std::min({row + 1 - top, bottom - row, 1.0F});
            if (cover <= 0) {
                continue;
            }
            const float under = std::clamp((row - top) * span, 0.0F, 1.0F);
            const float light = std::clamp(branch.light + 0.30F * (0.45F - under), 0.0F, 1.0F);
            Color color = mix(m_tree.shade, m_tree.lit, light);
            if (branch.snow > 0) {
                const float lying = branch.snow * smoothStep(0.62F, 0.30F, under);
                color = mix(color, m_tree.snowColor * (0.62F + 0.5F * branch.light), lying);
            }
            m_canvas.blend(x, y, color, cover);
        }
    }

    Canvas &m_canvas;
    const Conifer &m_tree;
    Dice m_dice;
};

} // namespace

void paintConifer(Canvas &canvas, const Conifer &tree)
{
    ConiferPainter(canvas, tree).paint();
}

} // namespace imageservice
