#include "sim/demo_content.h"

#include "demo_pictures.h"
#include "sim/demo_symbols.h"

#include <QStringView>

#include <array>
#include <span>

namespace hr::sim
{
namespace
{

constexpr int LocoRecords = 0x000000;         // record of loco address n at n * 64
constexpr int AccessoryAssignment = 0x0E0000; // byte of accessory address a at + a
constexpr int FunctionPictures = 0x0F0000;
constexpr int AccessoryPictures = 0x0F8000;
constexpr int LocoPictures = 0x110000;
constexpr int StartPicture = 0x118000;
constexpr int DisplayTexts = 0x120000;
constexpr int SettingsPage = 0x3F0000;
constexpr int Routes = 0x3F0204;
constexpr int AccessoryList = 0x3F0808;

constexpr int LocoRecordSize = 64;
constexpr int NameSize = 21;
constexpr int ModeBitsOffset = 28;
constexpr int MultiUniOffset = 31;
constexpr char MultiUniBit = '\x80';
constexpr int FunctionSymbolsOffset = 32; // + function number, 1..24
constexpr int LocoSymbolOffset = 61;
constexpr int PairSize = 64;
constexpr int HalfSize = 32;
constexpr int DisplayTextSize = 32;
constexpr int RouteSize = 4;
constexpr int AccessoryCount = 2048;
constexpr int AccessoryPlaceSize = 8;
constexpr int Functions = 24;
constexpr int FunctionSymbols = 256;
constexpr char Erased = '\xFF';
constexpr char BlankCode = 39;

struct DemoFunction {
    int number;            // 0..24
    FunctionSymbol symbol; // function 0 has none
    bool momentary;
};

constexpr std::array SteamFunctions{DemoFunction{1, EngineSound, false}, DemoFunction{2, Whistle, true},
    DemoFunction{3, Smoke, false}, DemoFunction{4, Coupler, true}, DemoFunction{5, Bell, false},
    DemoFunction{6, ShuntingSpeed, false}, DemoFunction{7, CoalShovel, true}, DemoFunction{8, Injector, false},
    DemoFunction{9, AirPump, false}, DemoFunction{10, ShortWhistle, true}, DemoFunction{11, Firebox, false},
    DemoFunction{12, BrakeSqueal, true}, DemoFunction{13, RunningGearLight, false},
    DemoFunction{15, SafetyValve, true}, DemoFunction{16, ConductorWhistle, true}, DemoFunction{24, CabLight, false}};
constexpr std::array DieselFunctions{DemoFunction{1, EngineSound, false}, DemoFunction{2, Horn, true},
    DemoFunction{3, Coupler, true}, DemoFunction{4, ShuntingSpeed, false}, DemoFunction{5, CabLight, false},
    DemoFunction{6, NoInertia, false}, DemoFunction{7, Compressor, false}, DemoFunction{8, Fan, false},
    DemoFunction{9, LowHorn, true}, DemoFunction{10, HighBeam, false}, DemoFunction{11, BrakeSqueal, true}};
constexpr std::array ElectricFunctions{DemoFunction{1, EngineSound, false}, DemoFunction{2, Whistle, true},
    DemoFunction{3, PantographFront, false}, DemoFunction{4, PantographRear, false}, DemoFunction{5, HighBeam, false},
    DemoFunction{6, ShuntingSpeed, false}, DemoFunction{7, Coupler, true}, DemoFunction{8, CabLight, false},
    DemoFunction{9, Fan, false}, DemoFunction{13, LowHorn, true}, DemoFunction{17, ConductorWhistle, true},
    DemoFunction{20, TailLight, false}};
constexpr std::array TrainFunctions{DemoFunction{1, InteriorLight, false}, DemoFunction{2, Horn, true},
    DemoFunction{3, EngineSound, false}, DemoFunction{4, Doors, false}, DemoFunction{5, Announcement, true},
    DemoFunction{6, TailLight, false}, DemoFunction{7, HighBeam, false}, DemoFunction{14, ConductorWhistle, true}};

struct DemoLoco {
    int address;
    const char16_t *name;
    LocoSymbol symbol;
    std::span<const DemoFunction> functions;
    bool multiUni = false;
};

const std::array Locos{
    DemoLoco{1, u"BR 89 7462", SteamTankTwoAxles, SteamFunctions},
    DemoLoco{3, u"BR 01 1066", SteamExpress, SteamFunctions},
    DemoLoco{8, u"BR 80 030", SteamTankThreeAxles, SteamFunctions},
    DemoLoco{18, u"BR 18 478 BAY. S 3/6", SteamExpress, SteamFunctions},
    DemoLoco{24, u"BR 24 009", SteamFreight, SteamFunctions},
    DemoLoco{38, u"BR 38 1772", SteamTubTender, SteamFunctions},
    DemoLoco{50, u"BR 50 3564", SteamTubTender, SteamFunctions},
    DemoLoco{64, u"BR 64 250", SteamTankLarge, SteamFunctions},
    DemoLoco{78, u"BR 78 246", SteamTankLarge, SteamFunctions},
    DemoLoco{94, u"E 94 279", ElectricCrocodile, ElectricFunctions},
    DemoLoco{103, u"103 113-7 INTERCITY", ElectricHighSpeed, ElectricFunctions},
    DemoLoco{110, u"110 243 BÜGELFALTE", ElectricStandard, ElectricFunctions},
    DemoLoco{120, u"120 112-8", ElectricModern, ElectricFunctions},
    DemoLoco{132, u"132 141-3 LUDMILLA", DieselSixAxles, DieselFunctions},
    DemoLoco{151, u"151 049 + 151 033", ElectricSixAxles, ElectricFunctions, true},
    DemoLoco{212, u"212 084-8", DieselHood, DieselFunctions},
    DemoLoco{218, u"218 217-8", DieselNew, DieselFunctions, true},
    DemoLoco{220, u"V 200 033", DieselNew, DieselFunctions},
    DemoLoco{260, u"V 60 447", DieselShunter, DieselFunctions},
    DemoLoco{290, u"290 189-0", DieselCentreCab, DieselFunctions},
    DemoLoco{323, u"KÖF 6151", SmallShunter, DieselFunctions},
    DemoLoco{403, u"403 ICE 3", HighSpeedTrain, TrainFunctions},
    DemoLoco{614, u"614 005 PENDLER", DieselUnit, TrainFunctions},
    DemoLoco{798, u"VT 98 9731", RailBus, TrainFunctions},
    DemoLoco{1066, u"E 10 1066", ElectricStandard, ElectricFunctions},
    DemoLoco{9999, u"TESTLOK", DieselCentreCab, DieselFunctions},
};

struct DemoRoute {
    int number;   // 1..80
    int feedback; // 1..4096
    bool whenOccupied;
};

constexpr std::array DemoRoutes{DemoRoute{1, 1, true}, DemoRoute{2, 2, true}, DemoRoute{3, 17, false},
    DemoRoute{4, 18, false}, DemoRoute{5, 33, true}, DemoRoute{8, 64, false}, DemoRoute{12, 255, true},
    DemoRoute{13, 256, true}, DemoRoute{40, 1025, false}, DemoRoute{80, 4096, true}};

struct DemoAccessory {
    int first; // accessory addresses first..last, 1..2048
    int last;
    AccessorySymbol symbol;
};

constexpr std::array DemoAccessories{DemoAccessory{1, 12, TurnoutLeft}, DemoAccessory{13, 24, TurnoutRight},
    DemoAccessory{25, 26, ThreeWayTurnout}, DemoAccessory{27, 30, DoubleSlip}, DemoAccessory{31, 42, MainSignal},
    DemoAccessory{43, 50, DistantSignal}, DemoAccessory{51, 54, ShuntingSignal}, DemoAccessory{55, 55, Barrier},
    DemoAccessory{56, 58, Uncoupler}, DemoAccessory{59, 60, StationLamp}};

struct DemoPlace {
    int address;           // 1..2048
    const char16_t *label; // two characters
    AccessorySymbol symbol;
};

constexpr std::array DemoPlaces{DemoPlace{1, u"W1", TurnoutLeft}, DemoPlace{2, u"W2", TurnoutLeft},
    DemoPlace{13, u"W3", TurnoutRight}, DemoPlace{14, u"W4", TurnoutRight}, DemoPlace{25, u"D1", ThreeWayTurnout},
    DemoPlace{27, u"K1", DoubleSlip}, DemoPlace{31, u"A ", MainSignal}, DemoPlace{32, u"B ", MainSignal},
    DemoPlace{33, u"N1", MainSignal}, DemoPlace{43, u"VA", DistantSignal}, DemoPlace{51, u"S1", ShuntingSignal},
    DemoPlace{55, u"BÜ", Barrier}, DemoPlace{56, u"E1", Uncoupler}, DemoPlace{300, u"L1", StationLamp}};

constexpr std::array<unsigned char, 12> Settings{1, 2, 0, 50, 3, 10, 1, 1, 0, 28, 128, 4}; // byte 5 = switch-off time
constexpr int FreeTextNumber = 51;
constexpr int OccupiedTextNumber = 52;

// The handheld's characters in the order of their codes.
QByteArray Codes(QStringView text, int length)
{
    static const QString set = QStringLiteral(u"0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZÄÖÜ +-.:/=_?<>^|]");
    QByteArray codes(length, BlankCode);
    for (qsizetype i = 0; i < text.size() && i < length; ++i) {
        Q_ASSERT(set.contains(text.at(i)));
        codes[i] = static_cast<char>(set.indexOf(text.at(i)));
    }
    return codes;
}

QByteArray BigEndian(int number)
{
    const std::array bytes{static_cast<char>(number >> 8), static_cast<char>(number & 0xFF)};
    return {bytes.data(), static_cast<qsizetype>(bytes.size())};
}

QByteArray LocoRecord(const DemoLoco &loco)
{
    QByteArray record(LocoRecordSize, Erased);
    record.replace(0, NameSize, Codes(loco.name, NameSize));
    for (int i = 0; i < 4; ++i)
        record[ModeBitsOffset + i] = 0;
    if (loco.multiUni)
        record[MultiUniOffset] = MultiUniBit;
    for (int number = 1; number <= Functions; ++number)
        record[FunctionSymbolsOffset + number] = Nothing;
    for (const DemoFunction &function : loco.functions) {
        record[FunctionSymbolsOffset + function.number] = static_cast<char>(function.symbol);
        const int place = ModeBitsOffset + function.number / 8;
        const int bit = function.momentary ? 1 << (function.number % 8) : 0;
        record[place] = static_cast<char>(record.at(place) | bit);
    }
    record[LocoSymbolOffset] = static_cast<char>(loco.symbol);
    return record;
}

void FillLocos(Dataflash &flash)
{
    for (const DemoLoco &loco : Locos)
        flash.setBytes(LocoRecords + loco.address * LocoRecordSize, LocoRecord(loco));
}

void FillAccessories(Dataflash &flash)
{
    flash.setBytes(AccessoryAssignment + 1, QByteArray(AccessoryCount, NoAccessory));
    for (const DemoAccessory &range : DemoAccessories) {
        const QByteArray symbols(range.last - range.first + 1, static_cast<char>(range.symbol));
        flash.setBytes(AccessoryAssignment + range.first, symbols);
    }
    int address = AccessoryList;
    for (const DemoPlace &place : DemoPlaces) {
        flash.setBytes(address, BigEndian(place.address) + Codes(place.label, 2) + static_cast<char>(place.symbol));
        address += AccessoryPlaceSize;
    }
}

void FillRoutes(Dataflash &flash)
{
    for (const DemoRoute &route : DemoRoutes) {
        const int address = Routes + (route.number - 1) * RouteSize;
        flash.setBytes(address, BigEndian(route.feedback) + static_cast<char>(route.whenOccupied));
    }
}

void FillSettings(Dataflash &flash)
{
    flash.setBytes(SettingsPage, QByteArray(reinterpret_cast<const char *>(Settings.data()), Settings.size()));
}

void FillText(Dataflash &flash, int number, QStringView text)
{
    const int length = static_cast<int>(text.size());
    flash.setBytes(DisplayTexts + number * DisplayTextSize, static_cast<char>(length) + Codes(text, length));
}

int PictureAddress(const demo_pictures::Picture &picture)
{
    const int inPair = picture.number * PairSize + picture.half * HalfSize;
    switch (picture.kind) {
    case demo_pictures::Kind::Loco:
        return LocoPictures + picture.number * PageSize;
    case demo_pictures::Kind::Function:
        return FunctionPictures + inPair;
    case demo_pictures::Kind::Accessory:
        return AccessoryPictures + inPair;
    case demo_pictures::Kind::StartImage:
        break;
    }
    return StartPicture;
}

// The free function symbols hold an empty picture of 14 by 14 pixels.
void FillPictures(Dataflash &flash)
{
    QByteArray empty(HalfSize, 0);
    empty[0] = 6;
    empty[1] = 13;
    for (int number = FirstFreeFunctionSymbol; number < FunctionSymbols; ++number)
        flash.setBytes(FunctionPictures + number * PairSize, empty + empty);
    for (const demo_pictures::Picture &picture : demo_pictures::Pictures)
        flash.setBytes(
            PictureAddress(picture), QByteArray(reinterpret_cast<const char *>(picture.bytes.data()), picture.size));
}

} // namespace

void FillDemoContent(Dataflash &flash)
{
    FillLocos(flash);
    FillPictures(flash);
    FillAccessories(flash);
    FillRoutes(flash);
    FillSettings(flash);
    FillText(flash, FreeTextNumber, u"FREI");
    FillText(flash, OccupiedTextNumber, u"BELEGT");
}

} // namespace hr::sim
