#!/usr/bin/env python3
"""Writes the sample documents the default format templates are learned from.

thesis.docx  a thesis: abstracts with keywords, chapters 黑体 三号, sections 黑体
             四号, subsections 黑体 小四, captions 宋体 五号, references and
             acknowledgements, all at 1.5 line spacing; required texts 摘要,
             关键词, 参考文献 and 致谢.
report.docx  a general report: chapters 黑体 三号, sections 黑体 四号,
             subsections 黑体 小四, captions 宋体 五号, 1.5 line spacing;
             required text 结论.
Body text is 宋体 小四 throughout. A required text stands between "KKK" and
"GGG" in a paragraph of its own. Only the standard library is used.

Usage: make_template_docx.py OUTPUT_DIR
"""
import os
import sys
import zipfile

NS = ('xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main" '
      'xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships" '
      'xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main"')
CONTENT_TYPES = ('<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
                 '<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">'
                 '<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
                 '<Default Extension="xml" ContentType="application/xml"/>'
                 '<Override PartName="/word/document.xml" ContentType="application/'
                 'vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml"/></Types>')
RELS = ('<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
        '<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">'
        '<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/'
        'officeDocument" Target="word/document.xml"/></Relationships>')

SPACING = 360           # 1.5 lines
SIZES = {1: 32, 2: 28, 3: 24}   # 三号, 四号, 小四 in half-points
BODY, CAPTION = 24, 21  # 小四, 五号


def para(text, font, size, level=None):
    props = '<w:spacing w:line="%d" w:lineRule="auto"/>' % SPACING
    if level is not None:
        props = '<w:outlineLvl w:val="%d"/>' % (level - 1) + props
    return ('<w:p><w:pPr>%s</w:pPr><w:r><w:rPr><w:rFonts w:ascii="Times New Roman" w:eastAsia="%s"/>'
            '<w:sz w:val="%d"/></w:rPr><w:t xml:space="preserve">%s</w:t></w:r></w:p>' % (props, font, size, text))


def heading(level, text):
    return para(text, "黑体", SIZES[level], level)


def body(text):
    return para(text, "宋体", BODY)


def table(caption):
    cell = '<w:tc>%s</w:tc>' % body("数据")
    return para(caption, "宋体", CAPTION) + '<w:tbl><w:tr>%s%s</w:tr><w:tr>%s%s</w:tr></w:tbl>' % ((cell,) * 4)


def figure(caption):
    image = '<w:p><w:r><w:drawing><a:blip r:embed="rId9"/></w:drawing></w:r></w:p>'
    return image + para(caption, "宋体", CAPTION)


def chapters(names):
    parts = []
    for c, (name, sections) in enumerate(names, 1):
        parts.append(heading(1, "第%s章 %s" % ("一二三四五六七八九十"[c - 1], name)))
        for s, section in enumerate(sections, 1):
            parts.append(heading(2, "%d.%d %s" % (c, s, section)))
            parts.append(heading(3, "%d.%d.1 概述" % (c, s)))
            parts.append(body("本节说明%s的主要内容，正文使用宋体小四，行距为一点五倍。" % section))
        parts.append(table("表%d-1 %s主要参数" % (c, name)))
        parts.append(figure("图%d-1 %s示意图" % (c, name)))
    return parts


def thesis():
    parts = [body("KKK摘要GGG"), body("KKK关键词GGG"), body("KKK参考文献GGG"), body("KKK致谢GGG")]
    parts += [heading(1, "摘  要"), body("本文研究文档格式检查的方法与实现。"), body("关键词：格式检查；模板"),
              heading(1, "ABSTRACT"), body("This thesis studies the checking of document formats."),
              body("Key words: format check; template")]
    parts += chapters([("绪论", ["研究背景", "研究内容"]), ("相关理论", ["基本概念", "研究现状"]),
                       ("方法设计", ["总体框架", "实现细节"]), ("结论", ["工作总结", "研究展望"])])
    parts += [heading(1, "参考文献"), body("[1] 张三. 文档格式检查方法[J]. 计算机学报, 2020, 43(2): 1-10."),
              body("[2] 李四. 论文写作规范[M]. 北京: 科学出版社, 2019."), heading(1, "致  谢"),
              body("感谢导师的悉心指导。")]
    return parts


def report():
    parts = [body("KKK结论GGG")]
    parts += chapters([("总论", ["项目背景", "编制依据"]), ("建设方案", ["工艺选择", "总平面布置"]),
                       ("投资估算", ["估算范围", "资金筹措"]), ("结论与建议", ["结论", "建议"])])
    return parts


def write(path, parts):
    document = ('<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n<w:document %s><w:body>%s'
                '<w:sectPr/></w:body></w:document>' % (NS, "".join(parts)))
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as z:
        for name, text in (("[Content_Types].xml", CONTENT_TYPES), ("_rels/.rels", RELS),
                           ("word/document.xml", document)):
            info = zipfile.ZipInfo(name, date_time=(2026, 1, 1, 0, 0, 0))
            info.compress_type = zipfile.ZIP_DEFLATED
            z.writestr(info, text.encode("utf-8"))


def main():
    out = sys.argv[1]
    os.makedirs(out, exist_ok=True)
    write(os.path.join(out, "thesis.docx"), thesis())
    write(os.path.join(out, "report.docx"), report())


if __name__ == "__main__":
    main()
