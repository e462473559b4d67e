#!/usr/bin/env python3
"""Writes a deterministic long Chinese report as a DOCX, for benchmarks:
about 250,000 characters in 8 chapters with three heading levels, 60 tables
and 30 figures with captions, a table of contents with PAGEREF fields, and
a header and a footer. Only the standard library is used.

Usage: make_report_docx.py OUTPUT.docx
"""
import random
import sys
import zipfile

W = 'xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main" ' \
    'xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships" ' \
    'xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main"'
WORDS = ("工程 建设 项目 审查 报告 设计 施工 质量 安全 标准 规范 要求 技术 方案 分析 数据 系统 管理 "
         "结构 材料 检测 评估 结果 研究 方法 模型 参数 指标 计算 验证 运行 维护 环境 影响 措施 进度").split()
PNG = bytes.fromhex("89504e470d0a1a0a0000000d49484452000000010000000108060000001f15c4890000000d4944415478"
                    "9c6360000002000154a24f5d0000000049454e44ae426082")


RSID = ' w:rsidR="00A1%04X" w:rsidRPr="00B2%04X"'
RUN_PROPS = ('<w:rFonts w:ascii="Times New Roman" w:hAnsi="Times New Roman" w:eastAsia="宋体" w:cs="Times New Roman" w:hint="eastAsia"/>'
             '<w:kern w:val="0"/><w:sz w:val="24"/><w:szCs w:val="24"/><w:lang w:val="en-US" w:eastAsia="zh-CN"/>')
_count = [0]


def run(text, props=""):
    """A run as a word processor writes it: revision ids and full run properties."""
    _count[0] += 1
    return '<w:r%s><w:rPr>%s</w:rPr><w:t xml:space="preserve">%s</w:t></w:r>' % (
        RSID % (_count[0] % 65536, _count[0] % 977), props or RUN_PROPS, text)


def runs(text):
    """A text split into several runs, as editing leaves it."""
    pieces, start = [], 0
    while start < len(text):
        end = start + 20 + (start * 7) % 40
        pieces.append(run(text[start:end]))
        if len(pieces) % 3 == 0:
            pieces.append('<w:proofErr w:type="gramStart"/>')
        start = end
    return "".join(pieces)


def para(body, props=""):
    _count[0] += 1
    return '<w:p%s w:rsidRDefault="00C3%04X"><w:pPr>%s<w:rPr><w:rFonts w:hint="eastAsia"/></w:rPr></w:pPr>%s</w:p>' % (
        RSID % (_count[0] % 65536, _count[0] % 991), _count[0] % 65536, props, body)


def sentence(rng):
    return "".join(rng.choice(WORDS) for _ in range(rng.randint(8, 16))) + rng.choice("，。；")


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    rng = random.Random(300)
    body, toc, rels = [], [], []
    chars = 0
    table_no = figure_no = 0
    for ch in range(1, 9):
        heads = [(1, "第%d章 研究内容%d" % (ch, ch))]
        for sec in range(1, 6):
            heads.append((2, "%d.%d 技术分析%d" % (ch, sec, sec)))
            for sub in range(1, 4):
                heads.append((3, "%d.%d.%d 具体方案%d" % (ch, sec, sub, sub)))
        for level, title in heads:
            toc.append(para(run(title) + '<w:r><w:instrText> PAGEREF _Toc%d \\h </w:instrText></w:r>' % len(toc) + run(str(len(toc) + 3)),
                            '<w:pStyle w:val="TOC%d"/>' % level))
            body.append(para('<w:bookmarkStart w:id="%d" w:name="_Toc%d"/>%s<w:bookmarkEnd w:id="%d"/>'
                             % (len(toc), len(toc), run(title), len(toc)), '<w:pStyle w:val="Heading%d"/>' % level))
            for _ in range(5):
                text = "".join(sentence(rng) for _ in range(rng.randint(10, 14)))
                chars += len(text)
                body.append(para(runs(text), '<w:spacing w:line="360" w:lineRule="auto"/><w:ind w:firstLineChars="200" w:firstLine="480"/>'))
            if level == 3 and table_no < 60 and rng.random() < 0.6:
                table_no += 1
                body.append(para(run("表%d-%d 检测数据%d" % (ch, table_no, table_no))))
                rows = "".join("<w:tr>%s</w:tr>" % "".join(
                    "<w:tc>%s</w:tc>" % para(run("%s%d" % (rng.choice(WORDS), rng.randint(1, 999)))) for _ in range(4))
                    for _ in range(6))
                body.append("<w:tbl><w:tblPr/><w:tblGrid>%s</w:tblGrid>%s</w:tbl>" % ("<w:gridCol w:w=\"2000\"/>" * 4, rows))
            if level == 3 and figure_no < 30 and rng.random() < 0.3:
                figure_no += 1
                rid = "rIdImg%d" % figure_no
                rels.append('<Relationship Id="%s" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/image" Target="media/image%d.png"/>' % (rid, figure_no))
                body.append(para('<w:r><w:drawing><a:blip r:embed="%s"/></w:drawing></w:r>' % rid))
                body.append(para(run("图%d-%d 系统结构%d" % (ch, figure_no, figure_no))))
    document = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n<w:document %s><w:body>%s%s<w:sectPr/></w:body></w:document>' % (
        W, para(run("目  录")) + "".join(toc), "".join(body))
    styles = '<?xml version="1.0" encoding="UTF-8"?><w:styles %s>%s</w:styles>' % (W, "".join(
        '<w:style w:type="paragraph" w:styleId="Heading%d"><w:name w:val="heading %d"/><w:rPr><w:rFonts w:eastAsia="黑体"/><w:sz w:val="%d"/></w:rPr></w:style>'
        % (n, n, 36 - 4 * n) for n in (1, 2, 3)))
    rels_xml = '<?xml version="1.0" encoding="UTF-8"?><Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">%s</Relationships>' % "".join(rels)
    with zipfile.ZipFile(sys.argv[1], "w", zipfile.ZIP_DEFLATED) as z:
        z.writestr("[Content_Types].xml", '<?xml version="1.0"?><Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">'
                   '<Default Extension="xml" ContentType="application/xml"/><Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
                   '<Default Extension="png" ContentType="image/png"/>'
                   '<Override PartName="/word/document.xml" ContentType="application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml"/>'
                   '<Override PartName="/word/styles.xml" ContentType="application/vnd.openxmlformats-officedocument.wordprocessingml.styles+xml"/></Types>')
        z.writestr("_rels/.rels", '<?xml version="1.0"?><Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">'
                   '<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument" Target="word/document.xml"/></Relationships>')
        z.writestr("word/document.xml", document)
        z.writestr("word/styles.xml", styles)
        z.writestr("word/_rels/document.xml.rels", rels_xml)
        z.writestr("word/header1.xml", '<w:hdr %s>%s</w:hdr>' % (W, para(run("工程建设项目审查报告"))))
        z.writestr("word/footer1.xml", '<w:ftr %s>%s</w:ftr>' % (W, para(run("第 1 页"))))
        for n in range(1, figure_no + 1):
            z.writestr("word/media/image%d.png" % n, PNG)
    print("%s: %d characters of body text, %d tables, %d figures, document.xml %d bytes"
          % (sys.argv[1], chars, table_no, figure_no, len(document.encode("utf-8"))))


if __name__ == "__main__":
    main()
