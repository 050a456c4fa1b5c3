// What the symbol numbers of the demo handheld show: those of the symbol catalogues (konf/pictures) that the demo
// content uses, under the catalogue's names.
#pragma once

namespace hr::sim
{

/// Loco symbols, 0..63.
enum LocoSymbol {
    SteamExpress = 1,
    SteamFreight = 3,
    SteamTubTender = 4,
    SteamTankTwoAxles = 7,
    SteamTankThreeAxles = 8,
    SteamTankLarge = 9,
    DieselNew = 16,
    DieselCentreCab = 17,
    DieselHood = 18,
    DieselShunter = 20,
    SmallShunter = 21,
    DieselSixAxles = 23,
    ElectricCrocodile = 25,
    ElectricStandard = 26,
    ElectricSixAxles = 27,
    ElectricModern = 28,
    ElectricHighSpeed = 29,
    RailBus = 33,
    DieselUnit = 36,
    HighSpeedTrain = 39,
};

/// Function symbols, 0..255; 164 and above are free for the user's own.
enum FunctionSymbol {
    Nothing = 0,
    TailLight = 2,
    CabLight = 3,
    InteriorLight = 4,
    HighBeam = 5,
    RunningGearLight = 8,
    Firebox = 9,
    Smoke = 10,
    EngineSound = 11,
    Whistle = 14,
    ShortWhistle = 15,
    Horn = 16,
    LowHorn = 17,
    Bell = 18,
    Announcement = 20,
    ConductorWhistle = 21,
    Doors = 22,
    Coupler = 24,
    ShuntingSpeed = 26,
    NoInertia = 27,
    BrakeSqueal = 28,
    Fan = 30,
    PantographFront = 31,
    PantographRear = 32,
    CoalShovel = 33,
    Injector = 34,
    AirPump = 35,
    SafetyValve = 43,
    Compressor = 49,
};

/// Accessory symbols, 0..255; 28 and above are free for the user's own.
enum AccessorySymbol {
    NoAccessory = 0,
    TurnoutLeft = 1,
    TurnoutRight = 2,
    ThreeWayTurnout = 6,
    DoubleSlip = 8,
    MainSignal = 10,
    DistantSignal = 11,
    ShuntingSignal = 15,
    Uncoupler = 18,
    Barrier = 19,
    StationLamp = 21,
};

inline constexpr int FirstFreeFunctionSymbol = 164;

} // namespace hr::sim
