// The typed classes of annotations, `velko.pdf.annots.*`, each made over a generic one.
//
// Threads: any.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "document/engine/Annot.h"
#include "document/engine/AnnotEditor.h"
#include "platform/system/Activation.h"

namespace velko::pdf {

// The factory of each of the classes.
class IAnnotFactory : public Platform::IActivationFactory {
public:
    // An object of the class that stands for the same annotation; a renderer takes it
    // as it takes the generic one. Never empty. Raises `EngineException`: e_ErrParam for
    // an empty object and one of another engine, e_ErrInvalidType for another kind.
    virtual std::shared_ptr<IAnnot> Create(std::shared_ptr<IAnnot> pAnnot) = 0;
};

// What a typed object says of itself; a host asks for it with a dynamic cast.
class IAnnotDescription {
public:
    virtual ~IAnnotDescription() = default;

    // What the annotation says now. Waits and raises as `IAnnotEditor::ListAnnots`;
    // e_ErrNotFound for one that is not on its page any more.
    virtual ListedAnnot Describe() const = 0;
};

struct AnnotClass {
    std::int32_t nType; // as `IAnnot::GetType`
    const char* szName;
};

inline constexpr std::array<AnnotClass, 21> kAnnotClasses = {{
    {1, "velko.pdf.annots.Note"},
    {2, "velko.pdf.annots.Link"},
    {3, "velko.pdf.annots.FreeText"},
    {4, "velko.pdf.annots.Line"},
    {5, "velko.pdf.annots.Square"},
    {6, "velko.pdf.annots.Circle"},
    {7, "velko.pdf.annots.Polygon"},
    {8, "velko.pdf.annots.PolyLine"},
    {9, "velko.pdf.annots.Highlight"},
    {10, "velko.pdf.annots.Underline"},
    {11, "velko.pdf.annots.Squiggly"},
    {12, "velko.pdf.annots.StrikeOut"},
    {13, "velko.pdf.annots.Stamp"},
    {14, "velko.pdf.annots.Caret"},
    {15, "velko.pdf.annots.Ink"},
    {16, "velko.pdf.annots.PSInk"},
    {17, "velko.pdf.annots.FileAttachment"},
    {20, "velko.pdf.annots.Widget"},
    {21, "velko.pdf.annots.Screen"},
    {26, "velko.pdf.annots.Popup"},
    {27, "velko.pdf.annots.Redact"},
}};

// The class of a kind; null for one that has none.
constexpr const char* AnnotClassOf(std::int32_t nType) {
    for (const AnnotClass& annotClass : kAnnotClasses) {
        if (annotClass.nType == nType) {
            return annotClass.szName;
        }
    }
    return nullptr;
}

}
