"""The albums of the sample: invented names, one album for each property worth having.

Every file extension that Debian's encoders can write occurs: mp3 flac m4a aac ogg opus
wav aiff aif alac wv mpc. Monkey's Audio (ape) is missing because Debian has no encoder
for it.
"""

from dataclasses import dataclass, field

LONG_ALBUM = (
    "O tym, jak pewnego wieczoru orkiestra dęta z Żabiej Górki zgubiła drogę do domu, "
    "znalazła ją nad ranem po drugiej stronie rzeki i postanowiła już nigdy nie grać marszów"
)
LONG_TRACK = (
    "W którym klarnecista opowiada zaspanemu przewoźnikowi całą historię swojego ulubionego "
    "ustnika, a łódź tymczasem powoli i bez pośpiechu dryfuje w stronę szerokiego ujścia"
)


@dataclass
class Disc:
    """Tracks that lie in one folder below the album's own ('' is the album's folder itself)."""

    folder: str
    titles: list
    number: int = 0  # 0: the tags tell no disc


@dataclass
class Album:
    artist: str
    title: str
    year: int
    genre: str
    exts: list  # the tracks' extensions, used in turn
    discs: list  # of Disc
    design: str = ""  # '' for an album without a cover
    cover: str = "embedded"  # embedded, folder, sidecar
    cover_name: str = ""  # the file name of a folder cover
    image: str = "jpeg"  # jpeg, progressive or png
    pixels: int = 800
    seed: int = 1
    tagged: bool = True
    folder: str = ""  # where the names cannot be folder names
    mood: str = "dawn"
    bits: int = 16
    rate: int = 44100
    guests: dict = field(default_factory=dict)  # title -> the track's own artist

    def path(self):
        return self.folder or f"{self.artist}/{self.title}"

    def tracks(self):
        """All tracks as (disc, number within the disc, count in the disc, title, extension)."""
        turn = 0
        for disc in self.discs:
            for number, title in enumerate(disc.titles, 1):
                yield disc, number, len(disc.titles), title, self.exts[turn % len(self.exts)]
                turn += 1


def one(*titles):
    return [Disc("", list(titles))]


MUSIC = [
    Album(
        "Nocna Zajezdnia",
        "Ostatni kurs",
        2018,
        "Jazz",
        ["mp3"],
        one(
            "Pierwszy przystanek",
            "Żółte szyby",
            "Zwrotnica",
            "Ćmy pod latarnią",
            "Pętla za mostem",
            "Zjazd do zajezdni",
        ),
        "night_line",
        mood="lamp",
    ),
    Album(
        "Halcyon Ferry",
        "Slow Water",
        2021,
        "Folk",
        ["flac"],
        one("Slipway", "Drift", "Sandbar Hymn", "Low Bridge", "Nine Herons", "The Far Bank"),
        "tide",
        "folder",
        "cover.jpg",
        pixels=1000,
        seed=2,
        mood="river",
    ),
    Album(
        "Orkiestra Łąk i Wód",
        "Źródła i ujścia",
        2015,
        "Classical",
        ["flac"],
        one("Źródło", "Bystrza", "Rozlewisko", "Łęgi o świcie", "Ujście"),
        "strata",
        image="png",
        pixels=700,
        seed=3,
        mood="river",
        bits=24,
        rate=96000,
    ),
    Album(
        "Mira Vossler",
        "Glass Gardens",
        2022,
        "Pop",
        ["m4a"],
        one("Greenhouse", "Pane by Pane", "Moth Orchid", "Condensation", "Leave the Door Ajar"),
        "glass",
        image="progressive",
        seed=4,
        mood="dawn",
    ),
    # the .m4a files of this one hold ALAC, which only a look inside tells
    Album(
        "Mira Vossler",
        "Paper Moons",
        2024,
        "Pop",
        ["m4a"],
        one("Crescent", "Cut-Out Sky", "Gold Leaf", "Tidewriting", "Waning"),
        "moons",
        seed=5,
        mood="lamp",
        bits=24,
        rate=48000,
    ),
    Album(
        "Świerszcze Północy",
        "Zielona godzina",
        2012,
        "Folk",
        ["ogg"],
        one("Rosa", "Miedza", "Zielona godzina", "Kłosy i chabry", "Słońce za stodołą", "Śpij już, nić babiego lata"),
        "hills",
        "folder",
        "folder.jpg",
        seed=6,
        mood="dawn",
    ),
    Album(
        "Low Tide Almanac",
        "Soundings",
        2019,
        "Electronic",
        ["opus"],
        [
            Disc("CD1", ["Fathom", "Lead Line", "Kelp Signal", "Estuary Clock"], 1),
            Disc("CD2", ["Undertow", "Chart No. 7", "Slack Water", "Landfall"], 2),
        ],
        "sonar",
        seed=7,
        mood="river",
        rate=48000,
    ),
    Album(
        "Kwartet Pod Jesionem",
        "Dwie pory",
        2010,
        "Classical",
        ["flac"],
        [
            Disc("Część pierwsza", ["Wrześniowe światło", "Szron na płocie", "Liście"], 1),
            Disc("Część druga", ["Pierwszy śnieg", "Cisza za oknem", "Odwilż"], 2),
        ],
        "two_seasons",
        "folder",
        "cover.png",
        image="png",
        pixels=700,
        seed=8,
        mood="field",
    ),
    Album(
        "Lena Brzask",
        "Pocztówki",
        2023,
        "Singer-Songwriter",
        ["mp3"],
        one("Morze rano", "Zatoka", "Cyrk przyjechał", "Przystań", "Późny list z wyspy"),
        "postcard",
        "sidecar",
        seed=9,
        mood="dawn",
    ),
    Album(
        "Radio Szuflada",
        "Taśma z plaży",
        1979,
        "",
        ["mp3"],
        one("Fale", "Parasolki", "Lody w wafelku", "Wracamy"),
        "sunrise",
        "folder",
        "folder.jpg",
        seed=10,
        tagged=False,
        mood="field",
    ),
    Album(
        "AC/DC Revival",
        "What Now?",
        2016,
        "Rock",
        ["wv"],
        one("Who Goes There?", "Plug It In", "Amp on Fire (Slowly)", "Why Not: Again", "Encore?"),
        "question",
        seed=11,
        folder="AC-DC Revival/What Now?",
        mood="lamp",
    ),
    Album(
        "Cold Harbour Signals",
        "Beacons",
        2020,
        "Ambient",
        ["mpc"],
        one("Keeper", "Two Short, One Long", "Fresnel", "Fog Bell", "Last Ship In"),
        "beacon",
        "folder",
        "cover.jpg",
        pixels=900,
        seed=12,
        mood="river",
        guests={"Fresnel": "Cold Harbour Signals feat. Mira Vossler"},
    ),
    Album(
        "Bureau of Small Planets",
        "Orbits",
        2017,
        "Electronic",
        ["aac", "alac"],
        one("Ceres Calling", "Perihelion", "Pallas", "Small Hours, Small Worlds", "Vesta", "Escape Velocity"),
        "orbits",
        "folder",
        "folder.jpg",
        seed=13,
        mood="field",
    ),
    Album(
        "Towarzystwo Długich Tytułów",
        LONG_ALBUM,
        2014,
        "Folk",
        ["mp3"],
        one("Wstęp", LONG_TRACK, "Epilog"),
        "words",
        seed=14,
        mood="field",
    ),
    Album(
        "Teodozja Mgiełka",
        "Notatki terenowe",
        2008,
        "Field Recording",
        ["wav", "aiff", "aif"],
        one("Las, 5:40", "Potok pod mchem", "Deszcz na blasze", "Żabi staw", "Wiatr w trzcinach", "Sowa"),
        mood="dawn",
    ),
]

# Already on the iPod, and not in the library
ON_IPOD = Album(
    "Halcyon Ferry",
    "Early Crossings",
    2017,
    "Folk",
    ["mp3"],
    one("Ticket Office", "Gangway", "Wake Lines", "Gulls, Mostly"),
    "crossing",
    "folder",
    "cover.jpg",
    pixels=600,
    seed=15,
    mood="river",
)

# One look for each postcard
POSTCARDS = [
    ("#dcecf2", "#6fb1c9", "#e9dcc0", "#f28f6b", "#1f4b5e"),
    ("#fde8d0", "#7fb7a4", "#f1d6a8", "#ef5d60", "#2c4a52"),
    ("#f8d7da", "#9a8fbf", "#e8d5c4", "#f9c74f", "#463f68"),
    ("#fff1c1", "#4aa3a2", "#f4d9a4", "#f3722c", "#17484d"),
    ("#cfd8ea", "#5d7fb5", "#d9cfc1", "#ffe8a3", "#22304f"),
]


def file_name(text):
    """A name as a file name: only a slash is not allowed on this disk, the rest stays."""
    return text.replace("/", "-")
