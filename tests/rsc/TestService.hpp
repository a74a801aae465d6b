#pragma once

#include <Vela/System/Rsc/RscServiceFactory.hpp>
#include <Vela/System/Rsc/RscServiceProxy.hpp>

#include <array>
#include <cstdint>
#include <vector>

namespace Vela::System::Rsc::Testing
{

enum class Colour : std::uint8_t
{
    Red = 1,
    Blue = 7,
};

struct Point
{
    std::int16_t x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

struct Drawing
{
    RscString<128> name;
    Colour colour = Colour::Red;
    std::vector<Point> points;
    std::array<std::uint64_t, 2> stamps{};
    bool operator==(const Drawing&) const = default;
};

/// A member of each type that can travel, and of vectors and arrays of them.
struct Everything
{
    bool truth = false;
    std::int8_t int8 = 0;
    std::uint8_t uint8 = 0;
    std::int16_t int16 = 0;
    std::uint16_t uint16 = 0;
    std::int32_t int32 = 0;
    std::uint32_t uint32 = 0;
    std::int64_t int64 = 0;
    std::uint64_t uint64 = 0;
    float single = 0;
    double number = 0;
    Colour colour = Colour::Red;
    String text;
    RscString<16> shortText;
    RscVariant<16> variant;
    Point point;
    std::vector<bool> truths;
    std::vector<std::int64_t> integers;
    std::vector<float> singles;
    std::vector<String> texts;
    std::vector<RscVariant<16>> variants;
    std::vector<Drawing> drawings;
    std::array<std::uint8_t, 3> bytes{};
    std::array<String, 2> twoTexts;
    std::array<RscVariant<16>, 2> twoVariants;
    std::array<Point, 2> twoPoints;
    std::vector<std::vector<Colour>> colours;
    std::vector<std::array<Point, 2>> lines;
    std::array<std::vector<std::int8_t>, 2> rows;
    bool operator==(const Everything&) const = default;
};

/// Has an operation for each kind of argument, result and failure.
class ITestService : public IRscService
{
public:
    virtual void Nothing() = 0;
    virtual std::int32_t Add(std::int32_t left, std::int32_t right) const = 0;
    virtual String Echo(const String& text) = 0;
    virtual Drawing Mirror(const Drawing& drawing) = 0;
    virtual bool Split(const RscString<128>& text, RscString<128>& head, std::vector<RscString<128>>& rest) = 0;
    virtual String Describe(RscVariant<512> value) = 0;
    /// Throws what the text names.
    virtual void Fail(const String& what) = 0;
    /// Calls back into the service of that process, which calls back here, `depth` times.
    virtual std::int32_t Nest(const RscString<128>& processName, std::int32_t depth) = 0;
    /// Returns when it is released, or after the milliseconds.
    virtual bool Wait(std::int32_t milliseconds) = 0;
    virtual void Release() = 0;
    /// An array of that many drawings.
    virtual std::vector<Drawing> Many(std::uint32_t count) = 0;
    /// Identifies the thread that serves the call.
    virtual std::uint64_t GetThread() = 0;
    /// Takes its time.
    virtual void Linger(std::int32_t milliseconds) = 0;
    /// Takes everything apart and puts it together again on the way.
    virtual Everything Reflect(const Everything& everything) = 0;
};

} // namespace Vela::System::Rsc::Testing

namespace Vela::System::Rsc
{

template <>
struct StructFields<Testing::Point>
{
    static constexpr auto fields = std::tuple(&Testing::Point::x, &Testing::Point::y);
};

template <>
struct StructFields<Testing::Drawing>
{
    static constexpr auto fields = std::tuple(&Testing::Drawing::name, &Testing::Drawing::colour,
                                              &Testing::Drawing::points, &Testing::Drawing::stamps);
};

template <>
struct StructFields<Testing::Everything>
{
    using E = Testing::Everything;
    static constexpr auto fields =
        std::tuple(&E::truth, &E::int8, &E::uint8, &E::int16, &E::uint16, &E::int32, &E::uint32, &E::int64, &E::uint64,
                   &E::single, &E::number, &E::colour, &E::text, &E::shortText, &E::variant, &E::point, &E::truths,
                   &E::integers, &E::singles, &E::texts, &E::variants, &E::drawings, &E::bytes, &E::twoTexts,
                   &E::twoVariants, &E::twoPoints, &E::colours, &E::lines, &E::rows);
};

template <>
struct OperationTable<Testing::ITestService>
{
    using ITestService = Testing::ITestService;
    static constexpr const char* interfaceName = "Vela.Testing.ITestService";
    static constexpr auto operations = Operations(
        Operation<1, &ITestService::Nothing>("Nothing"), Operation<2, &ITestService::Add>("Add"),
        Operation<3, &ITestService::Echo>("Echo"), Operation<4, &ITestService::Mirror>("Mirror"),
        Operation<5, &ITestService::Split>("Split"), Operation<6, &ITestService::Describe>("Describe"),
        Operation<7, &ITestService::Fail>("Fail"), Operation<8, &ITestService::Nest>("Nest", noDeadline),
        Operation<9, &ITestService::Wait>("Wait"), Operation<10, &ITestService::Release>("Release"),
        Operation<11, &ITestService::Many>("Many"), Operation<12, &ITestService::GetThread>("GetThread", onOneThread),
        Operation<13, &ITestService::Linger>("Linger", noDeadline), Operation<14, &ITestService::Reflect>("Reflect"));
};

} // namespace Vela::System::Rsc

namespace Vela::System::Rsc::Testing
{

class TestServiceProxy final : public RscServiceProxyBase<ITestService>
{
public:
    using RscServiceProxyBase::RscServiceProxyBase;

    void Nothing() override
    {
        Invoke<&ITestService::Nothing>();
    }

    std::int32_t Add(std::int32_t left, std::int32_t right) const override
    {
        return Invoke<&ITestService::Add>(left, right);
    }

    String Echo(const String& text) override
    {
        return Invoke<&ITestService::Echo>(text);
    }

    Everything Reflect(const Everything& everything) override
    {
        return Invoke<&ITestService::Reflect>(everything);
    }

    Drawing Mirror(const Drawing& drawing) override
    {
        return Invoke<&ITestService::Mirror>(drawing);
    }

    bool Split(const RscString<128>& text, RscString<128>& head, std::vector<RscString<128>>& rest) override
    {
        return Invoke<&ITestService::Split>(text, head, rest);
    }

    String Describe(RscVariant<512> value) override
    {
        return Invoke<&ITestService::Describe>(value);
    }

    void Fail(const String& what) override
    {
        Invoke<&ITestService::Fail>(what);
    }

    std::int32_t Nest(const RscString<128>& processName, std::int32_t depth) override
    {
        return Invoke<&ITestService::Nest>(processName, depth);
    }

    bool Wait(std::int32_t milliseconds) override
    {
        return Invoke<&ITestService::Wait>(milliseconds);
    }

    void Release() override
    {
        Invoke<&ITestService::Release>();
    }

    std::vector<Drawing> Many(std::uint32_t count) override
    {
        return Invoke<&ITestService::Many>(count);
    }

    std::uint64_t GetThread() override
    {
        return Invoke<&ITestService::GetThread>();
    }

    void Linger(std::int32_t milliseconds) override
    {
        Invoke<&ITestService::Linger>(milliseconds);
    }
};

using TestServiceProxyFactory = RscServiceProxyFactory<ITestService, TestServiceProxy>;

} // namespace Vela::System::Rsc::Testing
