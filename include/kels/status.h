/** @file
 *  Status codes: what nearly every function returns.
 *
 *  Zero is success. A positive status is a warning: the work is done and every offending element has a defined
 *  result. A negative status is an error: nothing has been stored. The enumeration covers a wider family of
 *  libraries than this one, so it holds codes that no function here returns.
 */
#ifndef KELS_STATUS_H
#define KELS_STATUS_H

#include "kels/types.h"

/** Result of a call. */
typedef enum {
    kelStatusOk                       =     0, /**< No error, it's ok */
    kelStatusNoOperation              =     1, /**< No operation has been executed */
    kelStatusMisaligned               =     2, /**< Misaligned pointer in operation in which must be aligned */
    kelStatusSqrtNegArg               =     3, /**< Negative value(s) of argument in the function Sqrt */
    kelStatusInvThreshZeroLevel       =     4, /**< INF result. Zero value was met by InvThresh with zero level */
    kelStatusEvenMedianMask           =     5, /**< Even size of Median Filter mask was replaced by odd one */
    kelStatusDivByZeroValues          =     6, /**< Zero value(s) of divisor in the function Div */
    kelStatusLnZeroArg                =     7, /**< Zero value(s) of argument in the Ln function */
    kelStatusLnNegArg                 =     8, /**< Negative value(s) of argument in the Ln function */
    kelStatusNanArg                   =     9, /**< Not a Number argument value warning */
    kelStatusJpegMarkerMet            =    10, /**< JPEG marker was met in the bitstream */
    kelStatusFloored                  =    11, /**< All result values are floored */
    kelStatusOverflow                 =    12, /**< An overflow occurred in the operation */
    kelStatusLpStabilityLow           =    13, /**< Quantized LP syntethis filter stability check is applied at the low boundary of [0,pi] */
    kelStatusLpStabilityHigh          =    14, /**< Quantized LP syntethis filter stability check is applied at the high boundary of [0,pi] */
    kelStatusLpStabilityBoth          =    15, /**< Quantized LP syntethis filter stability check is applied at both boundaries of [0,pi] */
    kelStatusZeroOccupation           =    16, /**< Zero occupation count */
    kelStatusUnderflow                =    17, /**< An underflow occurred in the operation */
    kelStatusSingularity              =    18, /**< A singularity occurred in the operation */
    kelStatusDomain                   =    19, /**< Argument is out of function domain */
    kelStatusUnspecified              =    -2, /**< Unknown/unspecified error */
    kelStatusOutOfMemory              =    -4, /**< Not enough memory for the operation */
    kelStatusBadArg                   =    -5, /**< Function arg/param is bad */
    kelStatusBadSize                  =    -6, /**< Wrong value of data size */
    kelStatusBadBounds                =    -7, /**< Bad values of bounds: the low bound is greater than a high bound */
    kelStatusNullPtr                  =    -8, /**< Null pointer error */
    kelStatusNoMemory                 =    -9, /**< Not enough memory for the operation */
    kelStatusDivByZero                =   -10, /**< An attempt to divide by zero */
    kelStatusOutOfRange               =   -11, /**< Argument is out of range or point is outside the image */
    kelStatusBadDataType              =   -12, /**< Bad or unsupported data type */
    kelStatusBadScaleBounds           =   -13, /**< Scale bounds is out of range */
    kelStatusBadStep                  =   -14, /**< Step value is less or equal zero */
    kelStatusBadFftOrder              =   -15, /**< Invalid value of the FFT order parameter */
    kelStatusBadFftFlag               =   -16, /**< Invalid value of the FFT flag parameter */
    kelStatusContextMismatch          =   -17, /**< The context parameter doesn't match to the operation */
    kelStatusBadThreshBounds          =   -18, /**< Invalid treshold bounds */
    kelStatusNegThreshLevel           =   -19, /**< Negative value of the level in the threshold operation */
    kelStatusMomentTooSmall           =   -20, /**< Moment value M(0,0) is too small to continue calculation */
    kelStatusBadFlipMode              =   -21, /**< Invalid flip mode */
    kelStatusBadInterpolation         =   -22, /**< Invalid interpolation mode */
    kelStatusBadResizeFactor          =   -23, /**< Resize factor(s) less or equal to zero */
    kelStatusBadDlyLineIndex          =   -24, /**< Invalid value of the delay line sample index */
    kelStatusBadIirOrder              =   -25, /**< The order of IIR is less or equal zero */
    kelStatusBadFirLength             =   -26, /**< The number iterations of FIR is less or equal zero */
    kelStatusBadRelFreq               =   -27, /**< Relative frequency value is out of range */
    kelStatusBadMrPhase               =   -28, /**< Wrong value of the MR FIR sampling phase parameter */
    kelStatusBadMrFactor              =   -29, /**< Wrong value of the MR FIR sampling factor parameter */
    kelStatusPhaseRange               =   -30, /**< Phase value is out of range: 0 <= phase < factor */
    kelStatusFactorRange              =   -31, /**< Sampling factor is less or equal zero */
    kelStatusNegShift                 =   -32, /**< Value of shift is less than zero */
    kelStatusBadMaskSize              =   -33, /**< Invalid mask size */
    kelStatusAnchorOutsideMask        =   -34, /**< The anchor point is outside mask */
    kelStatusBadWtOffset              =   -35, /**< Invalid offset value of wavelet filter */
    kelStatusNegEpsilon               =   -36, /**< Negative epsilon value error */
    kelStatusBadStride                =   -37, /**< The stride value is less than the row length */
    kelStatusNegMagnitude             =   -38, /**< Magnitude value is negative */
    kelStatusKaiserTooHuge            =   -39, /**< Kaiser window is too huge */
    kelStatusTriangleAsym             =   -40, /**< The asymmetry of the Triangle is less -PI or greater or equal PI */
    kelStatusTrianglePhase            =   -41, /**< The phase of the Triangle is less 0 or greater or equal 2*PI */
    kelStatusTriangleFreq             =   -42, /**< The frequency of the Triangle is less 0 or greater or equal 0.5 */
    kelStatusTriangleMagn             =   -43, /**< The magnitude of the Triangle is less or equal to zero */
    kelStatusTonePhase                =   -44, /**< The phase of the Tone is less 0 or greater or equal 2*PI */
    kelStatusToneFreq                 =   -45, /**< The frequency of the Tone is less 0 or greater or equal 0.5 */
    kelStatusToneMagn                 =   -46, /**< The magnitude of the Tone is less or equal to zero */
    kelStatusBadChannelNumber         =   -47, /**< Illegal channel number */
    kelStatusBadGrayCoefficients      =   -48, /**< Sum of the ToGray converion coefficients must be less or equal to 1 */
    kelStatusBadGammaRange            =   -49, /**< Gamma range bounds is less or equal zero */
    kelStatusBadCompositeOp           =   -50, /**< Illegal type of image compositing operation */
    kelStatusZeroDivisorAbort         =   -51, /**< Divisor is equal zero, function is aborted */
    kelStatusBadCoi                   =   -52, /**< COI is out of range */
    kelStatusBadChannelCount          =   -53, /**< Bad or unsupported number of channels */
    kelStatusBadDitherLevels          =   -54, /**< Number of dithering levels is out of range */
    kelStatusBadNoiseAmplitude        =   -55, /**< Bad value of noise amplitude for dithering */
    kelStatusBadTransformCoefficients =   -56, /**< Unallowable values of the transformation coefficients */
    kelStatusBadRectSize              =   -57, /**< Size of the rectangle region is less or equal to the one */
    kelStatusDegenerateQuad           =   -58, /**< The quadrangle degenerates into triangle, line or point */
    kelStatusZeroMask                 =   -59, /**< All values of the mask are zero */
    kelStatusBadChannelOrder          =   -60, /**< Wrong order of the destination channels */
    kelStatusDrawTextFailed           =   -61, /**< System error in the draw text operation */
    kelStatusJpegMarker               =   -62, /**< JPEG marker was met in the bitstream */
    kelStatusJpegDctRange             =   -63, /**< JPEG DCT coefficient out of range */
    kelStatusJpegHuffmanTable         =   -64, /**< JPEG Huffman table destroyed */
    kelStatusNoSvdConvergence         =   -65, /**< No sonvergence of SVD algorithm */
    kelStatusBadCodebookFlag          =   -66, /**< Incorrect value of the codebook flag parameter */
    kelStatusNegOccupation            =   -67, /**< Negative occupation count */
    kelStatusFilterBankInit           =   -69, /**< Filter bank is not correctly initialized */
    kelStatusBadFilterBankParam       =   -70, /**< Incorrect value of the filter bank parameter */
    kelStatusBadFilterBankFreq        =   -71, /**< Incorrect value of the filter bank frequency parameter */
    kelStatusZigzagTooLong            =   -72, /**< The zigzag compact length is more then 64 */
    kelStatusBadDcCode                =   -73, /**< Illegal code while DC stream processing */
    kelStatusBadVlcCode               =   -74, /**< Illegal Huffman code while VLC stream processing */
    kelStatusBadMvCode                =   -75, /**< Illegal Huffman code while MV stream processing */
    kelStatusBadQuantizer             =   -76, /**< The quantizer value is less or qual to zero or more then 31 */
    kelStatusBadPlaneStep             =   -77, /**< The plane step is less then plane width */
    kelStatusBadExpandPixels          =   -78, /**< The expand pixels number is less then 8 */
    kelStatusBadFrameHeight           =   -79, /**< The frame height is less or equal to zero */
    kelStatusBadFrameWidth            =   -80, /**< The frame width is less then 8 */
    kelStatusStepBelow16              =   -81, /**< The step value is less than 16 */
    kelStatusStepBelow8               =   -82, /**< The step value is less than 8 */
    kelStatusBadPredictionMode        =   -83, /**< Prediction Mode value error */
    kelStatusBadDcLinearMode          =   -90, /**< Incorrect DC linear mode */
    kelStatusBadVideoComponent        =   -91, /**< Incorrect video component mode */
    kelStatusBadBitsPerPixel          =   -92, /**< Incorrect number of bits per pixel */
    kelStatusBadPredictionDirection   =   -93, /**< Incorrect prediction direction */
    kelStatusZeroBab                  =   -94, /**< All BAB values are zero */
    kelStatusBadBlockSize             =   -95, /**< Incorrect size of block or macroblock */
    kelStatusBadTemporalDifference    =   -96, /**< Incorrect temporal difference */
    kelStatusBadBufferAlignment       =   -97, /**< Incorrect buffer alignment */
    kelStatusBadFcode                 =   -98, /**< Incorrect fcode value */
    kelStatusBadDcCode2               =   -99, /**< Illegal code while DC stream processing */
    kelStatusBadVlcCode2              =  -100, /**< Illegal Huffman code while VLC stream processing */
    kelStatusBadMvCode2               =  -101, /**< Illegal Huffman code while MV stream processing */
    kelStatusBadBlockType             =  -102, /**< Incorrect block type */
    kelStatusBadBlockIndex            =  -103, /**< Incorrect block index */
    kelStatusBadQuantParam            =  -104, /**< Incorrect quantization parameter */
    kelStatusBadBitOffset             =  -105, /**< Incorrect bit offset value */
    kelStatusBadLutLevels             =  -106, /**< Number of levels for LUT is less than 2 */
    kelStatusBadHistogramLevels       =  -107, /**< Number of levels for histogram is less than 2 */
    kelStatusStepNotPixelMultiple     =  -108, /**< The step value is not pixel multiple */
    kelStatusCpuNotSupported          = -9998, /**< The target cpu is not supported */
    kelStatusModeNotSupported         = -9999  /**< The requested mode is currently not supported */
} KelStatus;

/** Whether a call has failed, and stored nothing: 0 and warnings are no failures. */
#define KELS_FAILED(status) ((status) < 0)

/** Text of a status code.
 *
 *  @return a constant NUL-terminated text, never null; "Unknown Status Code" for a number without a name.
 */
KELS_API const char* kelGetStatusString(KelStatus status);

#endif
