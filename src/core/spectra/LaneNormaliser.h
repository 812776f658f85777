#pragma once

#include <vector>

#include "spectra/Lanes.h"
#include "spectra/Normalisation.h"

/// Normalises spectra of the same energies as XafsSpectrum does, a pack at a time and to the same
/// bits: the edge, the pre-edge and the post-edge curve, the middle of the edge and the edge jump.
///
/// What depends on the energies alone is worked out once: the abscissae of the curves, and for
/// every pair of first and last point that a background has been fitted over the decomposed normal
/// matrix. For one thread.
class LaneNormaliser {
  public:
    /// Whether spectra of these energies can be normalised here: at least four, finite and strictly
    /// ascending. Others need XafsSpectrum itself.
    static bool suits(const std::vector<double>& energies);

    LaneNormaliser(const std::vector<double>& energies, const Normalisation& rule,
                   lanes::Units units = lanes::bestUnits());

    /// Normalises the pack mu[energy * lanes::Count + spectrum], whose first `count` spectra
    /// matter. With a common E0 each has it moved by its energy correction (eV), `count` of them;
    /// null: by nothing.
    void normalise(const double* mu, int count = lanes::Count, const double* corrections = nullptr);

    // Of the last pack, one for each of its spectra.
    const double* midE() const { return m_midE; }
    const double* dMut() const { return m_dMut; }
    /// Which of those that matter have an edge jump of 0: bit l for spectrum l.
    unsigned withoutJump() const { return m_withoutJump; }
    /// Which have a range that holds fewer than BackgroundRanges::FewestPoints energies.
    unsigned withoutLines() const { return m_withoutLines; }

    /// Points that the curves were fitted to.
    const lanes::Range& preRange() const { return m_preRange; }
    const lanes::Range& postRange() const { return m_postRange; }

    /// (mu - pre) / (post - pre) of the last pack at some of the energies; span: post - pre there.
    void doubleNormalised(const double* mu, const std::vector<int>& points, double* y,
                          double* span = nullptr) const;

    /// Values of the two curves of spectrum l at an energy, as their valueAt() gives them.
    double preAt(double e, int l) const;
    double postAt(double e, int l) const;

  private:
    /// A background's fit over a range: what is the same for all spectra.
    struct Prepared {
        int points = 0;
        double lu[background::MaxTerms * background::MaxTerms] = {};
        int row[background::MaxTerms] = {};
    };

    /// The decomposed matrices of a curve's spectra side by side.
    struct Decomposed {
        int of[lanes::Count];  // which of m_prepared, -1: none yet
        double lu[background::MaxTerms * background::MaxTerms * lanes::Count];
        int row[background::MaxTerms][lanes::Count];
    };

    void findEdges(const double* mu, int count, const double* corrections, double* edges) const;
    void findMiddle(const double* mu, const double* edges);
    void findJumps();
    void fit(const double* mu, const double* edges, double start, double end, lanes::Curve* curve,
             lanes::Range* fitted, Decomposed* decomposed);
    int prepared(int first, int end);
    template <typename Kind>
    void tabulate();
    void solve(const double* sums, const Decomposed& decomposed, lanes::Curve* curve) const;
    int lowerBound(double e, int hint) const;
    int pairAround(double e) const;
    double curveAt(const lanes::Curve& curve, int i, int l) const;
    double interpolatedAt(const lanes::Curve& curve, double e, int pair, int l) const;

    int m_kind;
    int m_terms = 0;  // of the kind of background
    Normalisation m_rule;
    const lanes::Kernels& m_kernels;
    std::vector<double> m_energies;
    std::vector<double> m_x;  // see background::Abscissa
    std::vector<double> m_z;
    std::vector<double> m_functions;  // of the kind, m_terms a point
    lanes::Abscissae m_abscissae;

    std::vector<Prepared> m_prepared;
    std::vector<std::vector<int>> m_preparedAt;  // [first][end]: index of m_prepared, -1 for none
    Decomposed m_ofPre;
    Decomposed m_ofPost;
    mutable int m_nearPair = 0;  // that was found last

    lanes::Curve m_pre = {};
    lanes::Curve m_post = {};
    lanes::Range m_preRange = {};
    lanes::Range m_postRange = {};
    double m_midE[lanes::Count] = {};
    double m_dMut[lanes::Count] = {};
    unsigned m_withoutJump = 0;
    unsigned m_withoutLines = 0;
};
