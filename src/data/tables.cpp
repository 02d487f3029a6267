#include "data/tables.h"

namespace tessivo {

const std::array<EffectType, 13> RvrbTbl{{
    {0x00, 0x00, "NO EFFECT   "},
    {0x01, 0x00, "HALL 1      "},
    {0x01, 0x01, "HALL 2      "},
    {0x02, 0x00, "ROOM 1      "},
    {0x02, 0x01, "ROOM 2      "},
    {0x02, 0x02, "ROOM 3      "},
    {0x03, 0x00, "STAGE 1     "},
    {0x03, 0x01, "STAGE 2     "},
    {0x04, 0x00, "PLATE       "},
    {0x10, 0x00, "WHITE ROOM  "},
    {0x11, 0x00, "TUNNEL      "},
    {0x12, 0x00, "CANYON      "},
    {0x13, 0x00, "BASEMENT    "},
}};

const std::array<EffectType, 15> ChrsTbl{{
    {0x00, 0x00, "NO EFFECT       "},
    {0x41, 0x00, "CHORUS 1        "},
    {0x41, 0x01, "CHORUS 2        "},
    {0x41, 0x02, "CHORUS 3        "},
    {0x41, 0x08, "CHORUS 4        "},
    {0x42, 0x00, "CELESTE 1       "},
    {0x42, 0x01, "CELESTE 2       "},
    {0x42, 0x02, "CELESTE 3       "},
    {0x42, 0x08, "CELESTE 4       "},
    {0x43, 0x00, "FLANGER 1       "},
    {0x43, 0x01, "FLANGER 2       "},
    {0x43, 0x08, "FLANGER 3       "},
    {0x44, 0x00, "SYMPHONIC       "},
    {0x57, 0x00, "ENSEMBLE DETUNE "},
    {0x48, 0x00, "PHASER 1        "},
}};

const std::array<EffectType, 64> VarTbl{{
    {0x00, 0x00, "NO EFFECT               "},
    {0x01, 0x00, "HALL 1                  "},
    {0x01, 0x01, "HALL 2                  "},
    {0x02, 0x00, "ROOM 1                  "},
    {0x02, 0x01, "ROOM 2                  "},
    {0x02, 0x02, "ROOM 3                  "},
    {0x03, 0x00, "STAGE 1                 "},
    {0x03, 0x01, "STAGE 2                 "},
    {0x04, 0x00, "PLATE                   "},
    {0x10, 0x00, "WHITE ROOM              "},
    {0x11, 0x00, "TUNNNEL                 "},
    {0x12, 0x00, "CANYON                  "},
    {0x13, 0x00, "BASEMENT                "},
    {0x05, 0x00, "DELAY L,C,R             "},
    {0x06, 0x00, "DELAY L,R               "},
    {0x07, 0x00, "ECHO                    "},
    {0x08, 0x00, "CROSS DELAY             "},
    {0x09, 0x00, "ER 1                    "},
    {0x09, 0x01, "ER 2                    "},
    {0x0A, 0x00, "GATE REVERB             "},
    {0x0B, 0x00, "REVERSE GATE            "},
    {0x14, 0x00, "KARAOKE 1               "},
    {0x14, 0x01, "KARAOKE 2               "},
    {0x14, 0x02, "KARAOKE 3               "},
    {0x41, 0x00, "CHORUS 1                "},
    {0x41, 0x01, "CHORUS 2                "},
    {0x41, 0x02, "CHORUS 3                "},
    {0x41, 0x08, "CHORUS 4                "},
    {0x42, 0x00, "CELESTE 1               "},
    {0x42, 0x01, "CELESTE 2               "},
    {0x42, 0x02, "CELESTE 3               "},
    {0x42, 0x08, "CELESTE 4               "},
    {0x43, 0x00, "FLANGER 1               "},
    {0x43, 0x01, "FLANGER 2               "},
    {0x43, 0x08, "FLANGER 3               "},
    {0x44, 0x00, "SYMPHONIC               "},
    {0x57, 0x00, "ENSEMBLE DETUNE         "},
    {0x58, 0x00, "AMBIENCE                "},
    {0x45, 0x00, "ROTARY SPEAKER          "},
    {0x56, 0x00, "2WAY ROTARY SPEAKER     "},
    {0x46, 0x00, "TREMOLO                 "},
    {0x47, 0x00, "AUTO PAN                "},
    {0x48, 0x00, "PHASER 1                "},
    {0x48, 0x08, "PHASER 2                "},
    {0x49, 0x00, "DISTORTION              "},
    {0x49, 0x01, "COMP+DISTORTION         "},
    {0x4A, 0x00, "OVER DRIVE              "},
    {0x4B, 0x00, "AMP SIMULATOR           "},
    {0x4C, 0x00, "3BAND EQ(MONO)          "},
    {0x4D, 0x00, "2BAND EQ(STEREO)        "},
    {0x4E, 0x00, "AUTO WAH(LFO)           "},
    {0x4E, 0x01, "AUTO WAH+DIST           "},
    {0x4E, 0x02, "AUTO WAH+ODRV           "},
    {0x52, 0x00, "TOUCH WAH 1             "},
    {0x52, 0x01, "TOUCH WAH 2             "},
    {0x52, 0x02, "TOUCH WAH+DIST          "},
    {0x52, 0x08, "TOUCH WAH+ODRV          "},
    {0x50, 0x00, "PITCH CHANGE 1          "},
    {0x50, 0x01, "PITCH CHANGE 2          "},
    {0x51, 0x00, "HARMONIC ENHANCER       "},
    {0x53, 0x00, "COMPRESSOR              "},
    {0x54, 0x00, "NOISE GATE              "},
    {0x55, 0x00, "VOICE CANCEL            "},
    {0x40, 0x00, "THRU                    "},
}};

const std::array<std::string_view, 128> PrfNames1{{
    "Ministry", "I'mReady", "TekScene", "Boodoo  ", "Roulette", "LongDay ", "Walrus  ", "Sync303 ",
    "MDMA    ", "Chordal ", "HardMorf", "Faaaat  ", "TekkHook", "TechLead", "Europe  ", "RaveLine",
    "HouseYa!", "Earth   ", "CS15    ", "MiniSaw ", "BluGreen", "RapLine ", "Transine", "DJ Zap  ",
    "Xchoir  ", "Happysyn", "Tekuitar", "Goa     ", "Noiz+Rez", "VocalGym", "Astral  ", "SharpLd ",
    "VanDriva", "Bohkyoh ", "Pizzsyn ", "Insomnia", "SynSteel", "Trancy  ", "Taurus  ", "Punchy! ",
    "101 Bass", "3o3Wave ", "OctaBass", "Harmo   ", "Ramp    ", "Fat Snap", "Coastal ", "Squash  ",
    "Cosmic  ", "FuzzLine", "Gigabass", "SubBs   ", "Lately  ", "Electron", "Stroller", "Syko    ",
    "Bomber  ", "Warp    ", "Rider   ", "HouseOrg", "Monty   ", "GutRencH", "DropBass", "Bad Ass ",
    "Pop Comp", "Analog  ", "Lipstick", "MegaClav", "DigiWah ", "SynChord", "Chook   ", "Larynx  ",
    "Scary   ", "AtkDist ", "WahDcy  ", "Bitcomp ", "Torture ", "M25     ", "Big Tune", "Nevada  ",
    "Ocean   ", "Red Wine", "FatSweep", "Shadow  ", "Dreampad", "FlutePad", "HitoLo  ", "Venus   ",
    "Banners ", "Metropol", "WavePad ", "Awaken  ", "4AD     ", "Thermion", "Pan     ", "Athens  ",
    "Abandone", "BellToll", "AirBlowr", "Emerald ", "Ethereal", "AutoSaw ", "Birds   ", "Geometry",
    "Difusion", "Fx Bell ", "Beauty  ", "Ghosts  ", "Breathy ", "Transpad", "SweepPd ", "HolyMthr",
    "Sparkle ", "Kiseki  ", "Despair ", "BeBach  ", "More Ice", "Chemical", "AyersRok", "BlueBook",
    "Moonweed", "Alobar  ", "Kemistry", "Abyss   ", "Dandelio", "OrchHits", "AcidHits", "FunkyHit",
}};

const std::array<std::string_view, 128> PrfNames2{{
    "Concert ", "Wired   ", "CP99    ", "LoFi    ", "Grnd/EP ", "Pno&Str ", "Bottled ", "Old One ",
    "ChorusEP", "DX EP1  ", "Wurlitzr", "Wurliolo", "Clavinet", "RezClav ", "Jimmy   ", "Emerson ",
    "Full B  ", "GospelB ", "Swish   ", "Full    ", "Ranks   ", "SuperVox", "Spyral  ", "DeepHouz",
    "ThaDoorz", "Stryng  ", "SloStrgs", "Drama   ", "DarkStr ", "Sweet   ", "ObieStr ", "Jupiters",
    "Simple  ", "HornSect", "Jump!   ", "FatBrass", "Syn&Brs ", "CS Warm ", "Anaswell", "OBSX    ",
    "FatAnne ", "Odyssy  ", "BloozHrp", "Steel   ", "RoundStl", "ChoStrat", "RokNasty", "Stack   ",
    "Fretless", "6String ", "Jaco    ", "Slap    ", "Upright ", "BoogieOn", "DX Super", "Kickit  ",
    "Kasimodo", "Lounge  ", "BellZee ", "DoraDora", "Masala  ", "NuTribal", "Emergeny", "AirForce",
    "TeckFX  ", "Bad Man ", "SpceWarp", "Lego    ", "Magneto ", "Cyber SE", "RtmScrch", "SeaOrgel",
    "Atlantis", "Planktns", "13Friday", "Science ", "Sewer   ", "Swamp   ", "Radium  ", "HipNosys",
    "Cryton  ", "TubChoka", "Dark SE ", "Hammer  ", "Patty   ", "Reflect ", "Drumatic", "7th Rndm",
    "X2-Sweep", "TranSeq ", "Acidosis", "MadKeef ", "Fireworx", "Engels  ", "N.Y. 99 ", "SuperArp",
    "Hard On ", "Kirmes1 ", "Clasical", "DRUG    ", "X-Sweep ", "Nexxus  ", "Katarsis", "Rave    ",
    "AN VELO ", "Memes   ", "Messa   ", "Moondot ", "Euro Kit", "WishU're", "DanceTec", "DigPhase",
    "Ready   ", "Becoming", "RockMakr", "TechRock", "Vibe-izm", "NewFunk ", "FunkyBro", "Orchstra",
    "Mr. Mute", "Wwinds  ", "9o9 Kit ", "8o8 Kit ", "4 by 4  ", "Elec Kit", "B900 Kit", "Session ",
}};

namespace {
constexpr std::array<std::string_view, 55> kHzTexts{{
    "  32 Hz", "  36 Hz", "  40 Hz", "  45 Hz", "  50 Hz", "  56 Hz", "  63 Hz", "  70 Hz",
    "  80 Hz", "  90 Hz", " 100 Hz", " 110 Hz", " 125 Hz", " 140 Hz", " 160 Hz", " 180 Hz",
    " 200 Hz", " 225 Hz", " 250 Hz", " 280 Hz", " 315 Hz", " 355 Hz", " 400 Hz", " 450 Hz",
    " 500 Hz", " 560 Hz", " 630 Hz", " 700 Hz", " 800 Hz", " 900 Hz", " 1.0KHz", " 1.1KHz",
    " 1.2KHz", " 1.4KHz", " 1.6KHz", " 1.8KHz", " 2.0KHz", " 2.2KHz", " 2.5KHz", " 2.8KHz",
    " 3.2KHz", " 3.6KHz", " 4.0KHz", " 4.5KHz", " 5.0KHz", " 5.6KHz", " 6.3KHz", " 7.0KHz",
    " 8.0KHz", " 9.0KHz", "10.0KHz", "11.0KHz", "12.0KHz", "14.0KHz", "16.0KHz",
}};
}  // namespace

std::string HzText(std::int16_t code) {
  if (code < 4 || code > 58) return "ERR";
  return std::string(kHzTexts[static_cast<std::size_t>(code - 4)]);
}

const EffectType* findEffectType(std::span<const EffectType> table, std::uint8_t high, std::uint8_t low, int* row) {
  const EffectType* found = nullptr;
  for (std::size_t i = 0; i < table.size(); ++i) {
    if (table[i].high == high && table[i].low == low) {  // the last matching row wins
      found = &table[i];
      if (row) *row = static_cast<int>(i);
    }
  }
  return found;
}

}  // namespace tessivo
