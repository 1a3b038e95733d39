#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace benchmarks {

/// What one run measured, by key.
using Figures = std::map<std::string, double>;

/// One row of the table: a figure of both sides and the ratio of their medians.
struct Row {
    std::string name;
    std::string key;
    std::string unit;
    enum class Goal { None, AtMost, AtLeast } goal = Goal::None;
    double ratio = 0.0; ///< ours by theirs, as the goal has it
};

struct Side {
    std::string name;
    std::function<Figures()> run;
};

/// Runs the sides in turn (A B A B ...) and prints one table row per `rows` entry. The first side
/// is ours, the second the peer.
class Comparison {
public:
    Comparison(std::vector<Side> sides, std::vector<Row> rows);

    /// Prints rows, then notes for the figures whose keys begin with "note ". Returns the exit
    /// status: 0, or 1 with a sentence on standard error when a run failed. A missed goal is no
    /// failure.
    int run(int repetitions);

private:
    void print(const Row& row) const;
    void printNotes() const;

    std::vector<Side> mSides;
    std::vector<Row> mRows;
    std::vector<std::map<std::string, std::vector<double>>> mFigures;
};

/// A row without a peer: measured values, a ratio that was computed, a goal for it.
void printRow(const std::string& name, const std::string& ours, const std::string& theirs,
              double ratio, Row::Goal goal, double goalRatio, const std::string& spread);

void printNote(const std::string& text);

std::string withUnit(double value, const std::string& unit);

} // namespace benchmarks
