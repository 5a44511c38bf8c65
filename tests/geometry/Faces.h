// What the tests of the face readers share.
#pragma once

#include "geometry/QuonFaceReader.h"

#include "geometry/Points.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quon_test
{

/// A reader's fields as other modules know them: the dispatch table's pointer, a pointer, 32 bits.
struct ReaderFields
{
    void* const* table;
    void* held;
    std::uint32_t position;
};

template <typename Reader>
ReaderFields& FieldsOf(Reader& reader)
{
    static_assert(sizeof(Reader) == sizeof(ReaderFields));
    return *reinterpret_cast<ReaderFields*>(&reader);
}

inline VxGePoint3dArray Triangle(int first)
{
    return MakeRun(first, 3);
}

/// An output array whose old contents show whether a reader touched it.
inline VxGePoint3dArray Stale()
{
    return MakeArray({{-1, -1, -1}, {-2, -2, -2}, {-3, -3, -3}, {-4, -4, -4}, {-5, -5, -5}});
}

inline void ExpectNoFaceLeft(QuonFaceReader& reader)
{
    VxGePoint3dArray face = Stale();
    const VxGePoint3d* const points = face.GetPoints();
    for (int i = 0; i < 2; ++i)
    {
        EXPECT_FALSE(reader.GetNextFace(face));
        EXPECT_EQ(face.GetPoints(), points);
        ExpectPoints(face, ToVector(Stale()));
    }
}

inline void ExpectFaces(QuonFaceReader& reader, const std::vector<std::vector<VxGePoint3d>>& faces)
{
    VxGePoint3dArray face = Stale();
    for (std::size_t i = 0; i < faces.size(); ++i)
    {
        SCOPED_TRACE(testing::Message() << "face " << i);
        ASSERT_TRUE(reader.GetNextFace(face));
        ExpectPoints(face, faces[i]);
    }
    ExpectNoFaceLeft(reader);
}

}  // namespace quon_test
