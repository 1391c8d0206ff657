// A host in an asio context: the standalone asio's, or Boost's.
#ifdef WITH_BOOST
#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
namespace asio = boost::asio;
#else
#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#endif
#include <InkoraKit/loops/AsioAdapter.h>

#include "Swatches.h"

using namespace InkoraKit;

int main(int count, char** arguments) try {
    const auto swatches = std::make_shared<Swatches>();
    InkoraManager::registerInkoraManager(swatches);

    asio::io_context context;
    const AsioAdapter<asio::posix::stream_descriptor> kit(context);
    swatches->pair(count, arguments);
    context.run();
} catch (const std::exception& error) {
    return Swatches::giveUp(error);
}
