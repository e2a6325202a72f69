// The PNG files embedded in the product, looked up by file name.
#pragma once

#include <cstddef>

struct Resource {
    const char* name;
    const unsigned char* data;
    std::size_t size;
};

// The resource of that file name, or null when there is none.
const Resource* findResource(const char* name);

// All resources, for tools that show them.
std::size_t resourceCount();
const Resource& resourceAt(std::size_t index);
