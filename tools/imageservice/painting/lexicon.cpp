#include "imageservice/painting/lexicon.h"

#include <QHash>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace imageservice {

namespace {

using Meaning = void (*)(Wishes &);

template <Motif Wanted>
void motif(Wishes &wishes)
{
    wishes.motif = wishes.motif.value_or(Wanted);
}

template <Daytime Wanted>
void daytime(Wishes &wishes)
{
    wishes.daytime = wishes.daytime.value_or(Wanted);
}

template <quint32 Rgb>
void tint(Wishes &wishes)
{
    wishes.tint = wishes.tint.value_or(Color::fromRgb(Rgb));
}

template <int Percent>
void clouds(Wishes &wishes)
{
    wishes.clouds = wishes.clouds.value_or(Percent / 100.0F);
}

template <int Percent>
void mist(Wishes &wishes)
{
    wishes.mist = wishes.mist.value_or(Percent / 100.0F);
}

void snow(Wishes &wishes)
{
    wishes.snow = true;
}

void aurora(Wishes &wishes)
{
    wishes.aurora = true;
}

void autumn(Wishes &wishes)
{
    wishes.autumn = true;
}

void moon(Wishes &wishes)
{
    wishes.moon = true;
}

void stars(Wishes &wishes)
{
    clouds<0>(wishes);
    daytime<Daytime::Night>(wishes);
}

void water(Wishes &wishes)
{
    wishes.water = true;
}

struct Entry
{
    QLatin1StringView words;
    Meaning meaning;
};

constexpr std::array Entries = {
    Entry{
        "mountain peak summit alp alps alpine himalaya ridge cliff canyon volcano glacier valley rocky"_L1,
        motif<Motif::Mountains>},
    Entry{
        "sea ocean beach coast wave island bay shore surf tropical lagoon sail ship harbor harbour"_L1,
        motif<Motif::Sea>},
    Entry{"desert dune sahara sand arabian oasis mars"_L1, motif<Motif::Dunes>},
    Entry{"city skyline town street skyscraper building urban metropolis downtown cyberpunk neon "
          "tokyo york "
          "london paris shanghai"_L1,
        motif<Motif::City>},
    Entry{"forest wood woods woodland tree pine fir spruce jungle grove taiga"_L1,
        motif<Motif::Forest>},
    Entry{"dawn sunrise morning"_L1, daytime<Daytime::Dawn>},
    Entry{"day daylight noon sunny sunshine afternoon bright"_L1, daytime<Daytime::Day>},
    Entry{"sunset sundown evening golden"_L1, daytime<Daytime::Sunset>},
    Entry{"dusk twilight gloaming"_L1, daytime<Daytime::Dusk>},
    Entry{"night midnight nocturnal dark moonlight moonlit neon cyberpunk"_L1,
        daytime<Daytime::Night>},
    Entry{"moon moonlight moonlit moonrise"_L1, moon},
    Entry{"star starry stargazing galaxy milky cosmos space universe"_L1, stars},
    Entry{"aurora borealis northern"_L1, aurora},
    Entry{"snow snowy winter frozen ice icy arctic christmas frost frosty glacier antarctica"_L1,
        snow},
    Entry{"autumn fall october maple larch"_L1, autumn},
    Entry{"lake river pond reflection reflecting fjord mirror water"_L1, water},
    Entry{"cloud cloudy overcast storm stormy dramatic rain rainy thunder"_L1, clouds<75>},
    Entry{"clear cloudless minimal minimalist minimalistic"_L1, clouds<5>},
    Entry{"mist misty fog foggy haze hazy dreamy mystical rain rainy"_L1, mist<80>},
    Entry{"red crimson scarlet ruby"_L1, tint<0xD8343A>},
    Entry{"orange amber copper"_L1, tint<0xF08A2C>},
    Entry{"yellow gold lemon"_L1, tint<0xF2C233>},
    Entry{"emerald lime jade"_L1, tint<0x3FAE6A>},
    Entry{"teal turquoise cyan aqua"_L1, tint<0x2BB5B5>},
    Entry{"blue azure sapphire cobalt"_L1, tint<0x2F6FE0>},
    Entry{"indigo navy"_L1, tint<0x3A3FB0>},
    Entry{"purple violet lilac lavender magenta vaporwave synthwave"_L1, tint<0x9A4FD8>},
    Entry{"pink rose rosy pastel"_L1, tint<0xF27FB0>},
    Entry{"monochrome grey gray silver"_L1, tint<0x8A8F94>},
};

QMultiHash<QString, Meaning> meanings()
{
    QMultiHash<QString, Meaning> result;
    for (const Entry &entry : Entries) {
        const QString words(entry.words);
        for (const QString &word : words.split(u' ')) {
            result.insert(word, entry.meaning);
        }
    }
    return result;
}

/// The word as it stands, else without the ending of its plural.
QList<Meaning> meaningsOf(const QString &word)
{
    static const auto known = meanings();
    if (known.contains(word) || !word.endsWith(u's')) {
        return known.values(word);
    }
    const auto singular = known.values(word.chopped(1));
    return singular.isEmpty() && word.endsWith("es"_L1) ? known.values(word.chopped(2)) : singular;
}

} // namespace

Wishes wishesIn(const QString &prompt)
{
    static const QRegularExpression gaps(u"[^\\p{L}]+"_s);
    Wishes wishes;
    for (const QString &word : prompt.toLower().split(gaps, Qt::SkipEmptyParts)) {
        for (const Meaning meaning : meaningsOf(word)) {
            meaning(wishes);
        }
    }
    return wishes;
}

} // namespace imageservice
