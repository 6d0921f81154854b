#include <ui/GraphicBuffer.h>

#include "platform/linux/BufferContents.h"

#include <atomic>
#include <new>

namespace
{

const android::status_t BUFFER_OK = 0;
const android::status_t BUFFER_NO_MEMORY = -12;
const android::status_t BUFFER_BAD_VALUE = -22;
const android::status_t BUFFER_INVALID_OPERATION = -38;

// "_bfr", the first letter in the highest byte.
const int MAGIC = 0x5f626672;

std::atomic<int> nLastNumber{0};

void CountNothing(android_native_base_t* /*pBase*/) {}

void FillNative(android::SLinuxBuffer& rBuffer, uint64_t nUsage)
{
    const CBufferContents& rContents = *rBuffer.pContents;
    rBuffer.sHandle = {sizeof(native_handle_t), 0, 1, {++nLastNumber}};
    rBuffer.sNative.common.magic = MAGIC;
    rBuffer.sNative.common.version = sizeof(ANativeWindowBuffer);
    rBuffer.sNative.common.incRef = CountNothing;
    rBuffer.sNative.common.decRef = CountNothing;
    rBuffer.sNative.width = rContents.Width();
    rBuffer.sNative.height = rContents.Height();
    rBuffer.sNative.stride = rContents.Stride();
    rBuffer.sNative.format = rContents.Format();
    rBuffer.sNative.usage_deprecated = static_cast<int>(nUsage);
    rBuffer.sNative.layerCount = 1;
    // The way back from the native buffer.
    rBuffer.sNative.reserved[0] = &rBuffer;
    rBuffer.sNative.handle = &rBuffer.sHandle;
    rBuffer.sNative.usage = nUsage;
}

} // namespace

std::shared_ptr<CBufferContents> ContentsOf(const void* pNativeBuffer)
{
    const auto* const pNative = static_cast<const ANativeWindowBuffer*>(pNativeBuffer);
    if (pNative == nullptr || pNative->common.magic != MAGIC ||
        pNative->common.version != sizeof(ANativeWindowBuffer))
        return nullptr;
    return static_cast<const android::SLinuxBuffer*>(pNative->reserved[0])->pContents;
}

namespace android
{

GraphicBuffer::GraphicBuffer(uint32_t nWidth, uint32_t nHeight, PixelFormat nFormat, uint32_t nLayerCount,
                             uint64_t nUsage, const std::string& /*rRequestor*/)
    : m_pBuffer(std::make_unique<SLinuxBuffer>())
{
    m_pBuffer->nStatus = BUFFER_BAD_VALUE;
    if (nLayerCount > 1 || !CBufferContents::IsPossible(nWidth, nHeight, nFormat))
        return;
    try {
        m_pBuffer->pContents =
            std::make_shared<CBufferContents>(static_cast<int>(nWidth), static_cast<int>(nHeight), nFormat);
        FillNative(*m_pBuffer, nUsage);
        m_pBuffer->nStatus = BUFFER_OK;
    } catch (const std::bad_alloc&) {
        m_pBuffer->nStatus = BUFFER_NO_MEMORY;
    }
}

GraphicBuffer::~GraphicBuffer() = default;

status_t GraphicBuffer::initCheck() const
{
    return m_pBuffer->nStatus;
}

uint32_t GraphicBuffer::getWidth() const
{
    return static_cast<uint32_t>(m_pBuffer->sNative.width);
}

uint32_t GraphicBuffer::getHeight() const
{
    return static_cast<uint32_t>(m_pBuffer->sNative.height);
}

uint32_t GraphicBuffer::getStride() const
{
    return static_cast<uint32_t>(m_pBuffer->sNative.stride);
}

uint64_t GraphicBuffer::getUsage() const
{
    return m_pBuffer->sNative.usage;
}

PixelFormat GraphicBuffer::getPixelFormat() const
{
    return m_pBuffer->sNative.format;
}

ANativeWindowBuffer* GraphicBuffer::getNativeBuffer() const
{
    return &m_pBuffer->sNative;
}

status_t GraphicBuffer::lock(uint32_t nUsage, void** ppAddress)
{
    if (!m_pBuffer->pContents || ppAddress == nullptr)
        return BUFFER_BAD_VALUE;
    *ppAddress = m_pBuffer->pContents->Lock((nUsage & USAGE_SW_WRITE_OFTEN) != 0);
    return *ppAddress != nullptr ? BUFFER_OK : BUFFER_INVALID_OPERATION;
}

status_t GraphicBuffer::lockYCbCr(uint32_t nUsage, android_ycbcr* pLayout)
{
    if (!m_pBuffer->pContents || !m_pBuffer->pContents->IsYUV() || pLayout == nullptr)
        return BUFFER_BAD_VALUE;
    *pLayout = {};
    const status_t nResult = lock(nUsage, &pLayout->y);
    if (nResult != BUFFER_OK)
        return nResult;
    unsigned char* const pChroma = m_pBuffer->pContents->Chroma();
    const bool bVFirst = m_pBuffer->pContents->Format() == HAL_PIXEL_FORMAT_YCRCB_420_SP;
    pLayout->cb = pChroma + (bVFirst ? 1 : 0);
    pLayout->cr = pChroma + (bVFirst ? 0 : 1);
    pLayout->ystride = static_cast<size_t>(m_pBuffer->pContents->Stride());
    pLayout->cstride = pLayout->ystride;
    pLayout->chroma_step = 2;
    return BUFFER_OK;
}

status_t GraphicBuffer::unlock()
{
    if (!m_pBuffer->pContents)
        return BUFFER_BAD_VALUE;
    return m_pBuffer->pContents->Unlock() ? BUFFER_OK : BUFFER_INVALID_OPERATION;
}

} // namespace android
