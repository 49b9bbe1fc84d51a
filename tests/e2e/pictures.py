"""What can be read off a picture of the bar."""

from PIL import ImageChops

COLOURED = 45  # how far the components of a colour are apart at least; greys have none


def coloured_columns(picture):
    """How many pixels of one row are coloured, in the row with the most: the length of the used part of the bar, in the
    colourful styles."""
    red, green, blue, *_alpha = picture.split()
    brightest = ImageChops.lighter(ImageChops.lighter(red, green), blue)
    darkest = ImageChops.darker(ImageChops.darker(red, green), blue)
    mask = ImageChops.subtract(brightest, darkest).point(lambda spread: 255 * (spread > COLOURED)).tobytes()
    return max(mask[start:start + picture.width].count(255) for start in range(0, len(mask), picture.width))


def lightness(pixel):
    return sum(pixel[:3]) / 3 / 255


def ink(picture):
    """The share of pixels that differ much from the corner: text, on an even ground."""
    ground = lightness(picture.getpixel((0, 0)))
    pixels = list(picture.getdata())
    return sum(abs(lightness(pixel) - ground) > 0.3 for pixel in pixels) / len(pixels)


def same(one, other):
    return one.size == other.size and one.tobytes() == other.tobytes()
