#include "support/Comparison.h"

#include "support/Statistics.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <utility>

namespace benchmarks {
namespace {

constexpr const char* kNotePrefix = "note ";

std::string number(double value) {
    const int decimals = value < 10.0 ? 2 : value < 100.0 ? 1 : 0;
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string range(const std::vector<double>& values) {
    const auto [low, high] = std::minmax_element(values.begin(), values.end());
    return number(*low) + "–" + number(*high);
}

} // namespace

std::string withUnit(double value, const std::string& unit) {
    return number(value) + " " + unit;
}

void printNote(const std::string& text) {
    std::printf("note: %s\n", text.c_str());
    std::fflush(stdout);
}

void printRow(const std::string& name, const std::string& ours, const std::string& theirs,
              double ratio, Row::Goal goal, double goalRatio, const std::string& spread) {
    std::string goalText = "–";
    std::string verdict;
    if (goal != Row::Goal::None) {
        const bool atMost = goal == Row::Goal::AtMost;
        const bool met = atMost ? ratio <= goalRatio : ratio >= goalRatio;
        goalText = (atMost ? "≤ " : "≥ ") + number(goalRatio);
        verdict = met ? " met" : " missed";
    }
    std::printf("| %s | %s | %s | %s | %s%s | %s |\n", name.c_str(), ours.c_str(), theirs.c_str(),
                number(ratio).c_str(), goalText.c_str(), verdict.c_str(), spread.c_str());
    std::fflush(stdout);
}

Comparison::Comparison(std::vector<Side> sides, std::vector<Row> rows)
    : mSides(std::move(sides)), mRows(std::move(rows)), mFigures(mSides.size()) {
}

int Comparison::run(int repetitions) {
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        for (std::size_t side = 0; side < mSides.size(); ++side) {
            try {
                for (const auto& [key, value] : mSides[side].run()) {
                    mFigures[side][key].push_back(value);
                }
            } catch (const std::exception& error) {
                std::fprintf(stderr, "%s: %s\n", mSides[side].name.c_str(), error.what());
                return 1;
            }
        }
    }
    for (const Row& row : mRows) {
        print(row);
    }
    printNotes();
    return 0;
}

void Comparison::print(const Row& row) const {
    const auto& ours = mFigures[0].at(row.key);
    const auto& theirs = mFigures[1].at(row.key);
    const double oursMedian = median(ours);
    const double theirsMedian = median(theirs);
    printRow(row.name, withUnit(oursMedian, row.unit), withUnit(theirsMedian, row.unit),
             theirsMedian > 0.0 ? oursMedian / theirsMedian : 0.0, row.goal, row.ratio,
             "ours " + range(ours) + ", theirs " + range(theirs));
}

void Comparison::printNotes() const {
    for (std::size_t side = 0; side < mSides.size(); ++side) {
        for (const auto& [key, values] : mFigures[side]) {
            if (key.starts_with(kNotePrefix)) {
                printNote(mSides[side].name + ", " + key.substr(std::string(kNotePrefix).size()) +
                          ": " + number(median(values)) + " (" + range(values) + ")");
            }
        }
    }
}

} // namespace benchmarks
